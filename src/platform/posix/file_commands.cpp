#include "platform/file_commands.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "platform/posix/file_copy.h"
#include "platform/posix/file_likeness.h"
#include "platform/posix/native_path.h"
#include "platform/system_error.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

// True without an error; else the system's text of it.
bool Succeeded(ErrorRecord& error, const std::error_code& code) {
    if (code) error = SystemError(static_cast<std::uint32_t>(code.value()));
    return !code;
}

bool Fail(ErrorRecord& error, std::errc code) {
    return Succeeded(error, std::make_error_code(code));
}

// The names in a folder; nothing where it cannot be read. The library's iterator ends the program
// when it lacks memory.
std::optional<std::vector<std::string>> NamesIn(ErrorRecord& error, const fs::path& folder) {
    const std::unique_ptr<DIR, int (*)(DIR*)> open(::opendir(folder.c_str()), ::closedir);
    std::vector<std::string> names;
    errno = open ? 0 : errno;
    while (const dirent* const entry = open ? ::readdir(open.get()) : nullptr) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") names.emplace_back(name);
        errno = 0;
    }
    if (errno == 0) return names;
    error = SystemError();
    return std::nullopt;
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
    if (!link) return CopyRegularFile(error, from, to);
    fs::copy_symlink(from, to, code);
    return Succeeded(error, code);
}

bool CopyTree(ErrorRecord& error, const fs::path& from, const fs::path& to) {
    const auto names = NamesIn(error, from);
    return names && std::all_of(names->begin(), names->end(), [&](const std::string& name) {
               return CopyEntry(error, from / name, to / name);
           });
}

// Where a name leads, links resolved; the end of it need not exist.
std::optional<fs::path> Resolve(ErrorRecord& error, const fs::path& name) {
    std::error_code code;
    fs::path path = fs::absolute(name, code);
    if (!code) path = fs::weakly_canonical(path, code);
    if (!Succeeded(error, code)) return std::nullopt;
    return path;
}

std::optional<fs::path> Resolve(ErrorRecord& error, const String& name) {
    const auto native = NativePath(error, name);
    return native ? Resolve(error, fs::path(*native)) : std::nullopt;
}

// inner: a name or a path
template <typename Name>
std::optional<bool> Holds(ErrorRecord& error, const fs::path& outer, const Name& inner) {
    const auto path = Resolve(error, inner);
    if (!path) return std::nullopt;
    return std::mismatch(outer.begin(), outer.end(), path->begin(), path->end()).first ==
           outer.end();
}

// True for two spellings of one entry of a folder.
bool IsSameEntry(const fs::path& left, const fs::path& right) {
    const auto folder = [](const fs::path& path) {
        return path.has_parent_path() ? path.parent_path() : fs::path(".");
    };
    std::error_code code;
    return left.filename() == right.filename() && fs::equivalent(folder(left), folder(right), code);
}

// True when `to` is the very file that `from` is or leads to, under another name. The system's call
// would put a link in the place of the file that it leads to, and leaves two names of one file as
// they are. One with a single name is another spelling, also of the letter case.
bool IsOntoItself(const fs::path& from, const fs::path& to) {
    struct stat own {};
    struct stat behind {};
    struct stat target {};
    if (::lstat(to.c_str(), &target) != 0 || ::lstat(from.c_str(), &own) != 0) return false;
    if (IsSameFile(own, target)) return target.st_nlink > 1 && !IsSameEntry(from, to);
    return S_ISLNK(own.st_mode) && ::stat(from.c_str(), &behind) == 0 && IsSameFile(behind, target);
}

}  // namespace

bool CheckName(ErrorRecord& error, const String& name) {
    return NativePath(error, name).has_value();
}

bool IsFolder(const String& name) {
    ErrorRecord error;
    std::error_code code;
    const auto native = NativePath(error, name);
    return native && fs::is_directory(fs::symlink_status(*native, code));
}

std::optional<bool> IsWithin(ErrorRecord& error, const String& path, const String& folder) {
    const auto outer = Resolve(error, folder);
    return outer ? Holds(error, *outer, path) : std::nullopt;
}

std::optional<bool> IsRootOrHoldsCurrentFolder(ErrorRecord& error, const String& folder) {
    const auto path = Resolve(error, folder);
    if (!path) return std::nullopt;
    if (*path == path->root_path()) return true;
    std::error_code code;
    const fs::path current = fs::current_path(code);
    if (code == std::errc::no_such_file_or_directory) return false;  // somebody removed it
    return Succeeded(error, code) ? Holds(error, *path, current) : std::nullopt;
}

bool CopyOneFile(ErrorRecord& error, const String& from, const String& to) {
    const auto source = NativePath(error, from);
    const auto target = source ? NativePath(error, to) : std::nullopt;
    return target && CopyRegularFile(error, *source, *target);
}

bool MovePath(ErrorRecord& error, const String& from, const String& to) {
    const auto source = NativePath(error, from);
    const auto target = source ? NativePath(error, to) : std::nullopt;
    if (!target) return false;
    const bool folder = IsFolder(from);
    // Unlike the system's own call: an empty folder is not replaced either.
    if (folder && IsFolder(to) && *source != *target) return Fail(error, std::errc::file_exists);
    if (!folder && IsOntoItself(*source, *target)) return Fail(error, std::errc::file_exists);
    std::error_code code;
    fs::rename(*source, *target, code);
    if (code == std::errc::cross_device_link && !folder) return MoveByCopy(error, *source, *target);
    return Succeeded(error, code);
}

bool MoveOneFolder(ErrorRecord& error, const String& from, const String& to) {
    const auto source = NativePath(error, from);
    const auto target = source ? NativePath(error, to) : std::nullopt;
    if (!target) return false;
    std::error_code code;
    const fs::file_status status = fs::status(*source, code);
    if (fs::exists(status) && !fs::is_directory(status)) {
        return Fail(error, std::errc::not_a_directory);
    }
    // The system's call moves a link to a folder as it moves a file: over what is there.
    const bool taken = fs::exists(fs::symlink_status(*target, code)) && *source != *target;
    return taken ? Fail(error, std::errc::file_exists) : MovePath(error, from, to);
}

bool RemoveOneFile(ErrorRecord& error, const String& file) {
    const auto native = NativePath(error, file);
    if (!native) return false;
    if (::unlink(native->c_str()) == 0) return true;
    error = SystemError();
    return false;
}

bool CopyFolderContent(ErrorRecord& error, const String& from, const String& to) {
    const auto source = NativePath(error, from);
    const auto target = source ? NativePath(error, to) : std::nullopt;
    if (!target || !NamesIn(error, *source)) return false;
    std::error_code code;
    fs::create_directories(*target, code);
    return Succeeded(error, code) && CopyTree(error, *source, *target);
}

bool RemoveFolder(ErrorRecord& error, const String& folder) {
    const auto native = NativePath(error, folder);
    if (!native) return false;
    std::error_code code;
    fs::remove_all(*native, code);
    return Succeeded(error, code);
}

}  // namespace platform
