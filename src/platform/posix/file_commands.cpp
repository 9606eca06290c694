#include "platform/file_commands.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "base/utf8.h"
#include "platform/system_error.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

fs::path PathOf(const String& name) { return ToNativeBytes(name); }

// True without an error; else the system's text of it.
bool Succeeded(ErrorRecord& error, const std::error_code& code) {
    if (code) error = SystemError(static_cast<std::uint32_t>(code.value()));
    return !code;
}

bool Fail(ErrorRecord& error, std::errc code) {
    return Succeeded(error, std::make_error_code(code));
}

bool CopyFileContent(ErrorRecord& error, const fs::path& from, const fs::path& to) {
    std::error_code code;
    fs::copy_file(from, to, fs::copy_options::overwrite_existing, code);
    if (!Succeeded(error, code)) return false;
    const fs::file_time_type written = fs::last_write_time(from, code);
    if (!code) fs::last_write_time(to, written, code);  // as well as it goes
    return true;
}

// Copies a file or a link under a name of its own first, so that what is there stays until all of
// the new one is.
bool MoveToOtherFileSystem(ErrorRecord& error, const fs::path& from, const fs::path& to) {
    fs::path copy = to;
    copy += ".part";
    copy += std::to_string(::getpid());
    std::error_code code;
    if (fs::is_symlink(fs::symlink_status(from, code))) {
        fs::copy_symlink(from, copy, code);
    } else if (!CopyFileContent(error, from, copy)) {
        fs::remove(copy, code);
        return false;
    }
    if (!code) fs::rename(copy, to, code);
    if (!code) fs::remove(from, code);
    return Succeeded(error, code);
}

bool CopyTree(ErrorRecord& error, const fs::path& from, const fs::path& to);

// The target is never a link that would lead out of the tree.
bool CopyEntry(ErrorRecord& error, const fs::path& from, const fs::path& to) {
    std::error_code code;
    const fs::file_status source = fs::symlink_status(from, code);
    const fs::file_status target = fs::symlink_status(to, code);
    if (fs::is_directory(source)) {
        if (fs::exists(target)) {
            return fs::is_directory(target) ? CopyTree(error, from, to)
                                            : Fail(error, std::errc::not_a_directory);
        }
        fs::create_directory(to, code);
        if (!Succeeded(error, code) || !CopyTree(error, from, to)) return false;
        fs::permissions(to, source.permissions(), code);
        return Succeeded(error, code);
    }
    if (fs::is_directory(target)) return Fail(error, std::errc::is_a_directory);
    const bool link = fs::is_symlink(source);
    code.clear();
    if (fs::is_symlink(target) || (link && fs::exists(target))) fs::remove(to, code);
    if (!Succeeded(error, code)) return false;
    if (!link) return CopyFileContent(error, from, to);
    fs::copy_symlink(from, to, code);
    return Succeeded(error, code);
}

bool CopyTree(ErrorRecord& error, const fs::path& from, const fs::path& to) {
    std::error_code code;
    fs::directory_iterator entry(from, code);
    while (!code && entry != fs::directory_iterator()) {
        if (!CopyEntry(error, entry->path(), to / entry->path().filename())) return false;
        entry.increment(code);
    }
    return Succeeded(error, code);
}

}  // namespace

bool IsFolder(const String& name) {
    std::error_code code;
    return fs::is_directory(fs::symlink_status(PathOf(name), code));
}

bool IsWithin(const String& path, const String& folder) {
    std::error_code code;
    const fs::path inner = fs::weakly_canonical(fs::absolute(PathOf(path), code), code);
    const fs::path outer = fs::weakly_canonical(fs::absolute(PathOf(folder), code), code);
    return std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end()).first ==
           outer.end();
}

bool IsRoot(const String& name) {
    std::error_code code;
    const fs::path path = fs::weakly_canonical(fs::absolute(PathOf(name), code), code);
    return path == path.root_path();
}

String CurrentFolder() {
    std::error_code code;
    return FromNativeBytes(fs::current_path(code).native());
}

bool CopyOneFile(ErrorRecord& error, const String& from, const String& to) {
    return CopyFileContent(error, PathOf(from), PathOf(to));
}

bool MovePath(ErrorRecord& error, const String& from, const String& to) {
    const fs::path source = PathOf(from);
    const fs::path target = PathOf(to);
    // Unlike the system's own call: an empty folder is not replaced either.
    if (IsFolder(from) && IsFolder(to) && source != target) {
        return Fail(error, std::errc::file_exists);
    }
    std::error_code code;
    fs::rename(source, target, code);
    if (code == std::errc::cross_device_link && !IsFolder(from)) {
        return MoveToOtherFileSystem(error, source, target);
    }
    return Succeeded(error, code);
}

bool RemoveOneFile(ErrorRecord& error, const String& file) {
    if (::unlink(ToNativeBytes(file).c_str()) == 0) return true;
    error = SystemError();
    return false;
}

bool CopyFolderContent(ErrorRecord& error, const String& from, const String& to) {
    std::error_code code;
    const fs::directory_iterator readable(PathOf(from), code);
    if (!code) fs::create_directories(PathOf(to), code);
    return Succeeded(error, code) && CopyTree(error, PathOf(from), PathOf(to));
}

bool RemoveFolder(ErrorRecord& error, const String& folder) {
    std::error_code code;
    fs::remove_all(PathOf(folder), code);
    return Succeeded(error, code);
}

}  // namespace platform
