#include "platform/file_commands.h"

#include <windows.h>
// The shell's header wants windows.h first.
#include <shellapi.h>
#include <shlobj.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <vector>

#include "base/utf8.h"
#include "platform/file_system.h"
#include "platform/system_error.h"
#include "platform/windows/handle.h"
#include "platform/windows/native_path.h"
#include "platform/windows/wide.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

// True when a call succeeded; else the system's text of its failure.
bool Succeeded(ErrorRecord& error, BOOL result) {
    if (result == FALSE) error = SystemError();
    return result != FALSE;
}

// A name in the shell's form of a list: its own separators, and two zeros at the end.
String ListOf(String name) {
    std::replace(name.begin(), name.end(), u'/', u'\\');
    name += u'\0';
    return name;
}

// Without windows, questions and dialogs; folders are made as they are needed.
bool RunShellOperation(ErrorRecord& error, UINT function, const String& from, const String& to) {
    const String sources = ListOf(from);
    const String targets = ListOf(to);
    SHFILEOPSTRUCTW operation{};
    operation.wFunc = function;
    operation.pFrom = AsWide(sources);
    operation.pTo = AsWide(targets);
    operation.fFlags = FOF_SILENT | FOF_NOCONFIRMATION | FOF_NOCONFIRMMKDIR | FOF_NOERRORUI;
    const int result = ::SHFileOperationW(&operation);
    if (result != 0) error = SystemError(static_cast<std::uint32_t>(result));
    return result == 0;
}

// Looks for a pattern; false when its folder cannot be read. empty: nothing but "." and "..".
BOOL Search(const String& pattern, bool& empty) {
    WIN32_FIND_DATAW found;
    const HANDLE search = ::FindFirstFileW(AsWide(pattern), &found);
    if (search == INVALID_HANDLE_VALUE) return FALSE;
    empty = true;
    do {
        const String name(FromWide(found.cFileName, wcslen(found.cFileName)));
        empty = name == u"." || name == u"..";
    } while (empty && ::FindNextFileW(search, &found));
    ::FindClose(search);
    return TRUE;
}

// Makes a folder with its parents.
bool MakeFolders(ErrorRecord& error, const String& folder) {
    String full(MAX_PATH, u'\0');
    full.resize(::GetFullPathNameW(AsWide(folder), MAX_PATH, AsWide(full.data()), nullptr));
    const int result = ::SHCreateDirectoryExW(nullptr, AsWide(full), nullptr);
    const bool made = result == ERROR_SUCCESS || IsFolder(full);
    if (!made) error = SystemError(static_cast<std::uint32_t>(result));
    return made;
}

// Where a name leads, links resolved; the end of it need not exist.
std::optional<fs::path> Resolve(ErrorRecord& error, const String& name) {
    const wchar_t* const native = NativePath(error, name);
    if (native == nullptr) return std::nullopt;
    std::error_code code;
    fs::path path = fs::absolute(native, code);
    if (!code) path = fs::weakly_canonical(path, code);
    if (!code) return path;
    // The library has codes of the system and codes of its own.
    const auto number = static_cast<std::uint32_t>(code.value());
    error = code.category() == std::system_category()
                ? SystemError(number)
                : ErrorRecord{FromNativeBytes(code.message()), number};
    return std::nullopt;
}

bool IsSamePart(const fs::path& left, const fs::path& right) {
    return ::CompareStringOrdinal(left.c_str(), -1, right.c_str(), -1, TRUE) == CSTR_EQUAL;
}

std::optional<bool> Holds(ErrorRecord& error, const fs::path& outer, const String& inner) {
    const auto path = Resolve(error, inner);
    if (!path) return std::nullopt;
    return std::mismatch(outer.begin(), outer.end(), path->begin(), path->end(), IsSamePart)
               .first == outer.end();
}

bool IsRoot(const fs::path& path) {
    const bool share = path.root_name().native().starts_with(L"\\\\");
    const auto parts = std::distance(path.begin(), path.end());
    return path == path.root_path() || (share && parts <= 3);  // server, separator, share
}

// What tells one file from all others; all zero for a file that is not there or not open to
// `access`, whoever else has it open.
BY_HANDLE_FILE_INFORMATION InformationOf(const wchar_t* name, DWORD access) {
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const Handle file(::CreateFileW(name, access, kShareAll, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    BY_HANDLE_FILE_INFORMATION information{};
    if (file.Valid()) ::GetFileInformationByHandle(file.Get(), &information);
    return information;
}

// True where another file may take the place of `to`: an ordinary file that may be written, with no
// further names, which would keep the old content, and that is not the source itself.
bool IsReplaceable(const wchar_t* from, const wchar_t* to) {
    const BY_HANDLE_FILE_INFORMATION old = InformationOf(to, GENERIC_WRITE);
    const BY_HANDLE_FILE_INFORMATION source = InformationOf(from, 0);
    const bool same = old.dwVolumeSerialNumber == source.dwVolumeSerialNumber &&
                      old.nFileIndexHigh == source.nFileIndexHigh &&
                      old.nFileIndexLow == source.nFileIndexLow;
    constexpr DWORD kOthers = FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DIRECTORY |
                              FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN;
    return old.nNumberOfLinks == 1 && (old.dwFileAttributes & kOthers) == 0 && !same;
}

// Gives a new file the access rights of one that it is to replace.
bool CopyRights(const wchar_t* from, const wchar_t* to) {
    DWORD size = 0;
    ::GetFileSecurityW(from, DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    std::vector<std::byte> rights(size);
    return ::GetFileSecurityW(from, DACL_SECURITY_INFORMATION, rights.data(), size, &size) &&
           ::SetFileSecurityW(to, DACL_SECURITY_INFORMATION, rights.data());
}

// Copies under a name beside the target that nobody uses, which `part` becomes. Short, as one made
// from the target's name could be too long.
bool CopyToPart(const wchar_t* from, const fs::path& to, fs::path& part) {
    unsigned tried = 0;
    const std::wstring process = std::to_wstring(::GetCurrentProcessId());
    do {
        part = to.parent_path() /
               (L".quillon-" + process + L"-" + std::to_wstring(tried++) + L".part");
        if (::CopyFileW(from, part.c_str(), TRUE)) return true;
    } while (::GetLastError() == ERROR_FILE_EXISTS);
    return false;
}

void RemovePart(const fs::path& part) {
    ::SetFileAttributesW(part.c_str(), FILE_ATTRIBUTE_NORMAL);  // it may be a read-only one
    ::DeleteFileW(part.c_str());
}

// True when a folder does not take a part or does not let it replace a file: no right to, a file
// that others have open, no access rights to give to the part, too long a path. The file itself may
// be open to writing all the same.
bool IsRefusal(DWORD code) {
    constexpr std::array<DWORD, 6> kRefusals = {ERROR_ACCESS_DENIED,  ERROR_SHARING_VIOLATION,
                                                ERROR_NOT_SUPPORTED,  ERROR_INVALID_FUNCTION,
                                                ERROR_PATH_NOT_FOUND, ERROR_FILENAME_EXCED_RANGE};
    return std::find(kRefusals.begin(), kRefusals.end(), code) != kRefusals.end();
}

// Replaces a file by a copy that was made beside it.
bool ReplaceByPart(ErrorRecord& error, const wchar_t* from, const wchar_t* to) {
    fs::path part;
    const bool copied = CopyToPart(from, to, part);
    if (copied && CopyRights(to, part.c_str()) &&
        ::MoveFileExW(part.c_str(), to, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
        return true;
    }
    error = SystemError();
    if (copied) RemovePart(part);
    return false;
}

// True for a link to the file `to`, in the place of which the system's call would put it.
bool IsLinkOnto(const String& from, const String& to) {
    const auto is_link = [](const String& name) {
        const DWORD attributes = ::GetFileAttributesW(AsWide(name));
        return attributes != INVALID_FILE_ATTRIBUTES &&
               (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    };
    if (!is_link(from) || is_link(to)) return false;
    const auto behind = IdentityOf(from);
    return behind && IdentityOf(to) == behind;
}

}  // namespace

bool CheckName(ErrorRecord& error, const String& name) {
    return NativePath(error, name) != nullptr;
}

bool IsFolder(const String& name) {
    ErrorRecord error;
    const wchar_t* const native = NativePath(error, name);
    if (native == nullptr) return false;
    const DWORD attributes = ::GetFileAttributesW(native);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 &&
           (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0;
}

std::optional<bool> IsWithin(ErrorRecord& error, const String& path, const String& folder) {
    const auto outer = Resolve(error, folder);
    return outer ? Holds(error, *outer, path) : std::nullopt;
}

std::optional<bool> IsRootOrHoldsCurrentFolder(ErrorRecord& error, const String& folder) {
    if (folder.ends_with(u':')) return true;  // a drive, or rather the current folder on it
    const auto path = Resolve(error, folder);
    if (!path) return std::nullopt;
    if (IsRoot(*path)) return true;
    return Holds(error, *path, u".");
}

bool CopyOneFile(ErrorRecord& error, const String& from, const String& to) {
    const wchar_t* const source = NativePath(error, from);
    const wchar_t* const target = NativePath(error, to);
    if (source == nullptr || target == nullptr) return false;
    // A new file needs no part: the system lets nobody else write it meanwhile.
    if (IsReplaceable(source, target)) {
        if (ReplaceByPart(error, source, target)) return true;
        if (!IsRefusal(error.code)) return false;
    }
    return Succeeded(error, ::CopyFileW(source, target, FALSE));
}

bool MovePath(ErrorRecord& error, const String& from, const String& to) {
    const wchar_t* const source = NativePath(error, from);
    const wchar_t* const target = NativePath(error, to);
    if (source == nullptr || target == nullptr) return false;
    if (IsLinkOnto(from, to)) {
        error = SystemError(ERROR_FILE_EXISTS);
        return false;
    }
    constexpr DWORD kFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_COPY_ALLOWED;
    return Succeeded(error, ::MoveFileExW(source, target, kFlags));
}

bool MoveOneFolder(ErrorRecord& error, const String& from, const String& to) {
    const wchar_t* const source = NativePath(error, from);
    if (source == nullptr) return false;
    const DWORD attributes = ::GetFileAttributesW(source);
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
        error = SystemError(ERROR_DIRECTORY);
        return false;
    }
    return MovePath(error, from, to);
}

bool RemoveOneFile(ErrorRecord& error, const String& file) {
    const wchar_t* const native = NativePath(error, file);
    return native != nullptr && Succeeded(error, ::DeleteFileW(native));
}

bool CopyFolderContent(ErrorRecord& error, const String& from, const String& to) {
    if (!CheckName(error, from) || !CheckName(error, to)) return false;
    const String all = from + u"\\*";
    bool empty = false;
    if (!Succeeded(error, Search(all, empty)) || !MakeFolders(error, to)) return false;
    return empty || RunShellOperation(error, FO_COPY, all, to);  // nothing to do fails there
}

bool RemoveFolder(ErrorRecord& error, const String& folder) {
    // In the shell's list of names, what follows a zero is another folder to remove.
    return CheckName(error, folder) && RunShellOperation(error, FO_DELETE, folder, {});
}

}  // namespace platform
