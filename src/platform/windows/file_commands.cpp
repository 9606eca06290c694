#include "platform/file_commands.h"

#include <windows.h>
// The shell's header wants windows.h first.
#include <shellapi.h>
#include <shlobj.h>

#include <algorithm>
#include <filesystem>

#include "platform/system_error.h"
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

fs::path Canonical(const String& name) {
    std::error_code code;
    return fs::weakly_canonical(fs::absolute(fs::path(name), code), code);
}

bool IsSamePart(const fs::path& left, const fs::path& right) {
    return ::CompareStringOrdinal(left.c_str(), -1, right.c_str(), -1, TRUE) == CSTR_EQUAL;
}

}  // namespace

bool IsFolder(const String& name) {
    const DWORD attributes = ::GetFileAttributesW(AsWide(name));
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 &&
           (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0;
}

bool IsWithin(const String& path, const String& folder) {
    const fs::path inner = Canonical(path);
    const fs::path outer = Canonical(folder);
    return std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end(), IsSamePart)
               .first == outer.end();
}

bool IsRoot(const String& name) {
    if (name.ends_with(u':')) return true;  // a drive, or rather the current folder on it
    const fs::path path = Canonical(name);
    const bool share = path.root_name().native().starts_with(L"\\\\");
    const auto parts = std::distance(path.begin(), path.end());
    return path == path.root_path() || (share && parts <= 3);  // server, separator, share
}

String CurrentFolder() {
    std::error_code code;
    return fs::current_path(code).u16string();
}

bool CopyOneFile(ErrorRecord& error, const String& from, const String& to) {
    return Succeeded(error, ::CopyFileW(AsWide(from), AsWide(to), FALSE));
}

bool MovePath(ErrorRecord& error, const String& from, const String& to) {
    return Succeeded(error, ::MoveFileExW(AsWide(from), AsWide(to),
                                          MOVEFILE_REPLACE_EXISTING | MOVEFILE_COPY_ALLOWED));
}

bool RemoveOneFile(ErrorRecord& error, const String& file) {
    return Succeeded(error, ::DeleteFileW(AsWide(file)));
}

bool CopyFolderContent(ErrorRecord& error, const String& from, const String& to) {
    const String all = from + u"\\*";
    bool empty = false;
    if (!Succeeded(error, Search(all, empty)) || !MakeFolders(error, to)) return false;
    return empty || RunShellOperation(error, FO_COPY, all, to);  // nothing to do fails there
}

bool RemoveFolder(ErrorRecord& error, const String& folder) {
    return RunShellOperation(error, FO_DELETE, folder, {});
}

}  // namespace platform
