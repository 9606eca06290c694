#include "check/made_paths.h"

#include <algorithm>

#include "files/format.h"
#include "platform/file_system.h"

namespace {

constexpr StringView kSeparators = u"/\\";

// Both as RootedName gives them, a root with its separator or without.
bool IsWithin(StringView path, StringView folder) {
    const bool root = folder.find_last_not_of(kSeparators) == StringView::npos;
    return path.starts_with(folder) && (path.size() == folder.size() || root ||
                                        kSeparators.find(path[folder.size()]) != StringView::npos);
}

}  // namespace

void MadePaths::Add(const String& path) {
    if (!path.empty()) made_.push_back(platform::RootedName(path));
}

// What a step makes within a folder makes the folder known to be there, and what is copied or moved
// to a folder may bring all that lies below it.
bool MadePaths::IsThere(const String& path) const {
    if (platform::PathExists(path)) return true;
    const String name = platform::RootedName(path);
    return std::any_of(made_.begin(), made_.end(), [&](const String& made) {
        return IsWithin(name, made) || IsWithin(made, name);
    });
}

String MadePaths::Fault(const KeySpec& key, const String& path) const {
    if (key.names == Names::FileRead || key.names == Names::Folder) {
        if (IsThere(path)) return {};
        const StringView kind = key.names == Names::Folder ? u"folder" : u"file";
        return Format(u"There is no %s '%s', which '%s' names.", kind, path, key.name);
    }
    if (key.names != Names::File && key.names != Names::FileAside) return {};
    const std::size_t separator = path.find_last_of(kSeparators);
    if (separator == String::npos || separator == 0) return {};
    const String folder = path.substr(0, separator);
    if (folder.back() == u':' || IsThere(folder)) return {};
    return Format(u"There is no folder '%s' for the file that '%s' names.", folder, key.name);
}
