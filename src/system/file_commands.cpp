#include "system/file_commands.h"

#include "files/dfile.h"
#include "files/format.h"
#include "platform/file_commands.h"
#include "platform/file_system.h"

namespace {

// What the shell's lists of names hold.
constexpr std::size_t kLongestFolderName = 259;

bool IsTooLong(const String& name) { return name.size() > kLongestFolderName; }

bool Refuse(String& error, StringView prefix, StringView reason) {
    error = String(prefix) += reason;
    return false;
}

// Puts a prefix before the system's text.
bool Told(String& error, bool done, StringView prefix, const ErrorRecord& reason) {
    return done || Refuse(error, prefix, reason.text);
}

// The names of a copy or a move.
struct Names {
    String from;
    String to;

    explicit Names(const SectionSettings& settings)
        : from(settings.ResolvedText(u"From")), to(settings.ResolvedText(u"To")) {}
    bool Complete() const { return !from.empty() && !to.empty(); }
    bool TooLong() const { return IsTooLong(from) || IsTooLong(to); }
};

// Puts what was to be done behind the system's text.
bool Told(String& error, bool done, const ErrorRecord& reason, StringView verb,
          const Names& names) {
    return done ||
           Refuse(error, reason.text, Format(u" %s '%s' to '%s'", verb, names.from, names.to));
}

bool Move(String& error, const Names& names) {
    ErrorRecord reason;
    return Told(error, platform::MovePath(reason, names.from, names.to), reason, u"Move", names);
}

bool CheckFileNames(String& error, const Names& names, StringView prefix) {
    if (!names.Complete()) return Refuse(error, prefix, u"from or to file name is empty.");
    return platform::PathExists(names.from) ||
           Refuse(error, prefix, u"source file does not exist.");
}

bool CheckFolderNames(String& error, const Names& names, StringView prefix) {
    if (!names.Complete()) return Refuse(error, prefix, u"from or to folder name is empty.");
    return !names.TooLong() || Refuse(error, prefix, u"name is too long");
}

// The name without separators at its end, behind which a link would count as its folder.
String WithoutEndSeparators(String name) {
    const std::size_t last = name.find_last_not_of(u"/\\");
    const bool root = last == String::npos || name[last] == u':';
    if (!root) name.resize(last + 1);
    return name;
}

// True for folders that nobody wants to lose: roots, "..", the one that the program runs in.
bool IsProtected(const String& folder) {
    const std::size_t separator = folder.find_last_of(u"/\\");
    const String last = folder.substr(separator + 1);  // npos + 1 is 0
    return last == u"." || last == u".." || platform::IsRoot(folder) ||
           platform::IsWithin(platform::CurrentFolder(), folder);
}

}  // namespace

bool CopyFileCommand(String& error, const SectionSettings& settings) {
    const Names names(settings);
    if (!CheckFileNames(error, names, u"Copy File: ")) return false;
    ErrorRecord reason;
    const bool copied = platform::CopyOneFile(reason, names.from, names.to);
    return Told(error, copied, reason, u"Copy", names);
}

bool MoveFileCommand(String& error, const SectionSettings& settings) {
    const Names names(settings);
    return CheckFileNames(error, names, u"Move File: ") && Move(error, names);
}

bool CopyFolderCommand(String& error, const SectionSettings& settings) {
    const Names names(settings);
    if (!CheckFolderNames(error, names, u"Copy Folder: ")) return false;
    if (platform::IsWithin(names.to, names.from)) {
        return Refuse(error, u"CopyFolder: ", u"the target is within the source");
    }
    ErrorRecord reason;
    const bool copied = platform::CopyFolderContent(reason, names.from, names.to);
    return Told(error, copied, u"CopyFolder: ", reason);
}

bool MoveFolderCommand(String& error, const SectionSettings& settings) {
    const Names names(settings);
    return CheckFolderNames(error, names, u"Move Folder: ") && Move(error, names);
}

bool DeleteFileCommand(String& error, const SectionSettings& settings) {
    const String file = settings.ResolvedText(u"File");
    if (file.empty()) return Refuse(error, u"Delete file: ", u"file name is empty.");
    if (!platform::PathExists(file)) {
        error = Format(u"Delete File: source file '%s' does not exist.", file);
        return false;
    }
    ErrorRecord reason;
    return Told(error, platform::RemoveOneFile(reason, file), {}, reason);
}

bool DeleteFolderCommand(String& error, const SectionSettings& settings) {
    constexpr StringView kPrefix = u"DeleteFolder: ";
    const String folder = WithoutEndSeparators(settings.ResolvedText(u"Folder"));
    if (folder.empty()) return Refuse(error, u"Delete folder: ", u"folder name is empty.");
    if (IsTooLong(folder)) return Refuse(error, kPrefix, u"name is too long");
    if (!platform::IsFolder(folder)) {
        return Refuse(error, kPrefix, u"folder to be deleted does not exist");
    }
    if (IsProtected(folder)) {
        return Refuse(error, kPrefix, u"the folder is a root, '..' or holds the current folder");
    }
    ErrorRecord reason;
    return Told(error, platform::RemoveFolder(reason, folder), kPrefix, reason);
}

bool WriteFileCommand(String& error, const SectionSettings& settings) {
    const String name = settings.ResolvedText(u"File");
    const String text = settings.ResolvedText(u"Text");
    const bool overwrite = settings.Flag(u"Overwrite", false);
    const Encoding encoding = EncodingFromWord(settings.ResolvedText(u"Encoding"));
    if (name.empty() || text.empty()) {
        return Refuse(error, u"Write File: ", u"file name or text is empty.");
    }
    ErrorRecord reason;
    dFile file;
    const bool written = file.Open(reason, name, encoding, !overwrite) &&
                         file.Write(reason, text) && file.Write(reason, u"\r\n");
    file.Close();
    return Told(error, written, {}, reason);
}
