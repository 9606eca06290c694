#include "system/file_commands.h"

#include <cstddef>
#include <optional>
#include <span>

#include "config/encoding_setting.h"
#include "files/dfile.h"
#include "files/format.h"
#include "files/text_encoder.h"
#include "files/text_writer.h"
#include "platform/file_commands.h"
#include "platform/file_system.h"

namespace {

// What the shell's lists of names hold.
constexpr std::size_t kLongestFolderName = 259;

constexpr KeyTable kFileNameKeys({
    {.name = u"From",
     .meaning = u"the file",
     .macros = Macros::Replaced,
     .names = Names::FileRead,
     .needed = u"from"},
    {.name = u"To",
     .meaning = u"its new name",
     .macros = Macros::Replaced,
     .names = Names::File,
     .needed = u"to"},
});
constexpr KeyTable kFolderKeys({
    {.name = u"From",
     .meaning = u"the folder",
     .macros = Macros::Replaced,
     .names = Names::Folder,
     .needed = u"from"},
});
constexpr KeyTable kCopiedFolderKeys({
    {.name = u"To",
     .meaning = u"the folder that takes what is in it; made where it is missing",
     .macros = Macros::Replaced,
     .names = Names::MadeFolder,
     .needed = u"to"},
});
constexpr KeyTable kMovedFolderKeys({
    {.name = u"To",
     .meaning = u"its new name",
     .macros = Macros::Replaced,
     .names = Names::File,
     .needed = u"to"},
});
constexpr Key kFromFile = kFileNameKeys[u"From"];
constexpr Key kToFile = kFileNameKeys[u"To"];
constexpr Key kFromFolder = kFolderKeys[u"From"];
constexpr Key kCopiedFolder = kCopiedFolderKeys[u"To"];
constexpr Key kMovedFolder = kMovedFolderKeys[u"To"];

constexpr KeyTable kDeleteFileKeys({
    {.name = u"File",
     .meaning = u"the file",
     .macros = Macros::Replaced,
     .names = Names::FileRead,
     .needed = u"file"},
});
constexpr Key kDeletedFile = kDeleteFileKeys[u"File"];

constexpr KeyTable kDeleteFolderKeys({
    {.name = u"Folder",
     .meaning = u"the folder, with everything in it",
     .macros = Macros::Replaced,
     .names = Names::Folder,
     .needed = u"folder"},
});
constexpr Key kDeletedFolder = kDeleteFolderKeys[u"Folder"];

constexpr KeyTable kWriteFileKeys({
    {.name = u"File",
     .meaning = u"the file",
     .macros = Macros::Replaced,
     .names = Names::File,
     .needed = u"file"},
    {.name = u"Text",
     .meaning = u"what becomes a line of it",
     .macros = Macros::Replaced,
     .needed = u"text"},
    {.name = u"Overwrite",
     .kind = KeyKind::Flag,
     .edition1 = u"0",
     .edition2 = u"0",
     .meaning = u"start the file empty",
     .macros = Macros::Replaced},
    {.name = u"Encoding",
     .kind = KeyKind::Word,
     .words = kEncodingWords,
     .edition1 = u"ANSI",
     .edition2 = u"UTF8",
     .meaning = u"the encoding of the file",
     .macros = Macros::Replaced,
     .loose_words = kLooseEncodingWords},
    {.name = u"Bom",
     .kind = KeyKind::Flag,
     .edition1 = u"1",
     .edition2 = u"0",
     .meaning = u"a new file begins with its byte-order mark",
     .macros = Macros::Replaced,
     .since = Since::Later,
     .defaults = kMarkDefaults},
    {.name = u"Unmappable",
     .kind = KeyKind::Word,
     .words = kUnmappableWords,
     .edition1 = u"Cut",
     .edition2 = u"Stop",
     .meaning = u"what becomes of a character that the encoding lacks",
     .macros = Macros::Replaced,
     .since = Since::Later},
});
constexpr Key kWrittenFile = kWriteFileKeys[u"File"];
constexpr Key kWrittenText = kWriteFileKeys[u"Text"];
constexpr Key kWriteOverwrite = kWriteFileKeys[u"Overwrite"];
constexpr TextFormKeys kWrittenForm{.encoding = kWriteFileKeys[u"Encoding"],
                                    .mark = kWriteFileKeys[u"Bom"],
                                    .unmappable = kWriteFileKeys[u"Unmappable"]};

bool IsTooLong(const String& name) { return name.size() > kLongestFolderName; }

bool Refuse(String& error, StringView prefix, StringView reason) {
    error = String(prefix) += reason;
    return false;
}

// Passes a success on, and a failure with a prefix before the system's text.
bool Report(String& error, bool done, StringView prefix, const ErrorRecord& reason) {
    return done || Refuse(error, prefix, reason.text);
}

// The names of a copy or a move.
struct PathNames {
    String from;
    String to;

    PathNames(const SectionSettings& settings, Key from_key, Key to_key)
        : from(settings.Text(from_key)), to(settings.Text(to_key)) {}
    bool Complete() const { return !from.empty() && !to.empty(); }
    bool TooLong() const { return IsTooLong(from) || IsTooLong(to); }
};

// Passes a success on, and a failure with what was to be done behind the system's text.
bool Report(String& error, bool done, const ErrorRecord& reason, StringView verb,
            const PathNames& names) {
    return done ||
           Refuse(error, reason.text, Format(u" %s '%s' to '%s'", verb, names.from, names.to));
}

bool Move(String& error, const PathNames& names) {
    ErrorRecord reason;
    return Report(error, platform::MovePath(reason, names.from, names.to), reason, u"Move", names);
}

// verb: what is to be done, as a message begins
bool CheckFileNames(String& error, const PathNames& names, StringView verb) {
    const String prefix = Format(u"%s File: ", verb);
    if (!names.Complete()) return Refuse(error, prefix, u"from or to file name is empty.");
    ErrorRecord reason;
    if (!platform::CheckName(reason, names.from)) return Report(error, false, reason, verb, names);
    return platform::PathExists(names.from) ||
           Refuse(error, prefix, u"source file does not exist.");
}

bool CheckFolderNames(String& error, const PathNames& names, StringView prefix) {
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
// Nothing when the system does not tell where the name leads.
std::optional<bool> IsProtected(ErrorRecord& reason, const String& folder) {
    const std::size_t separator = folder.find_last_of(u"/\\");
    const String last = folder.substr(separator + 1);  // npos + 1 is 0
    if (last == u"." || last == u"..") return true;
    return platform::IsRootOrHoldsCurrentFolder(reason, folder);
}

constexpr StringView kLineEnd = u"\r\n";

bool CanEncode(ErrorRecord& error, const TextForm& form, StringView text) {
    const auto encoder = MakeTextEncoder(error, form.encoding, form.unmappable);
    std::span<const std::byte> ignored;
    return encoder && encoder->Encode(error, text, ignored);
}

// Writes a line of its own, whole or not at all. A text that cannot be encoded empties no file.
bool WriteLine(ErrorRecord& error, const String& name, const String& text, const TextForm& form,
               bool append) {
    const bool goes_on = append && platform::PathExists(name);
    if (!goes_on && !CanEncode(error, form, text)) return false;
    TextForm with_ends = form;
    with_ends.line_end = kLineEnd;
    TextWriter file;
    return file.Open(error, name, with_ends, append) &&
           file.Write(error, text + String(kLineEnd)) && file.Finish(error);
}

// The same for jobs that want no more than that something was written; notices tell what was not.
bool WriteLoosely(ErrorRecord& error, const String& name, const String& text, const TextForm& form,
                  bool append) {
    dFile file;
    const bool written = file.Open(error, name, form, append) && file.Write(error, text) &&
                         file.Write(error, kLineEnd);
    file.Close();
    return written;
}

}  // namespace

KeyList FileNameKeys() { return {kFileNameKeys}; }
KeyList CopyFolderKeys() { return {kFolderKeys, kCopiedFolderKeys}; }
KeyList MoveFolderKeys() { return {kFolderKeys, kMovedFolderKeys}; }
KeyList DeleteFileKeys() { return {kDeleteFileKeys}; }
KeyList DeleteFolderKeys() { return {kDeleteFolderKeys}; }
KeyList WriteFileKeys() { return {kWriteFileKeys}; }

bool CopyFileCommand(String& error, const SectionSettings& settings) {
    const PathNames names(settings, kFromFile, kToFile);
    if (!CheckFileNames(error, names, u"Copy")) return false;
    ErrorRecord reason;
    const bool copied = platform::CopyOneFile(reason, names.from, names.to);
    return Report(error, copied, reason, u"Copy", names);
}

bool MoveFileCommand(String& error, const SectionSettings& settings) {
    const PathNames names(settings, kFromFile, kToFile);
    return CheckFileNames(error, names, u"Move") && Move(error, names);
}

bool CopyFolderCommand(String& error, const SectionSettings& settings) {
    const PathNames names(settings, kFromFolder, kCopiedFolder);
    if (!CheckFolderNames(error, names, u"Copy Folder: ")) return false;
    constexpr StringView kPrefix = u"CopyFolder: ";
    ErrorRecord reason;
    const std::optional<bool> within = platform::IsWithin(reason, names.to, names.from);
    if (!within) return Report(error, false, kPrefix, reason);
    if (*within) return Refuse(error, kPrefix, u"the target is within the source");
    const bool copied = platform::CopyFolderContent(reason, names.from, names.to);
    return Report(error, copied, kPrefix, reason);
}

bool MoveFolderCommand(String& error, const SectionSettings& settings) {
    const PathNames names(settings, kFromFolder, kMovedFolder);
    if (!CheckFolderNames(error, names, u"Move Folder: ")) return false;
    if (!settings.Follows(Rule::FoldersMoveAlone)) return Move(error, names);
    ErrorRecord reason;
    const bool moved = platform::MoveOneFolder(reason, names.from, names.to);
    return Report(error, moved, reason, u"Move", names);
}

bool DeleteFileCommand(String& error, const SectionSettings& settings) {
    const String file = settings.Text(kDeletedFile);
    if (file.empty()) return Refuse(error, u"Delete file: ", u"file name is empty.");
    ErrorRecord reason;
    if (!platform::CheckName(reason, file)) return Report(error, false, {}, reason);
    if (!platform::PathExists(file)) {
        error = Format(u"Delete File: source file '%s' does not exist.", file);
        return false;
    }
    return Report(error, platform::RemoveOneFile(reason, file), {}, reason);
}

bool DeleteFolderCommand(String& error, const SectionSettings& settings) {
    constexpr StringView kPrefix = u"DeleteFolder: ";
    const String folder = WithoutEndSeparators(settings.Text(kDeletedFolder));
    if (folder.empty()) return Refuse(error, u"Delete folder: ", u"folder name is empty.");
    if (IsTooLong(folder)) return Refuse(error, kPrefix, u"name is too long");
    ErrorRecord reason;
    if (!platform::CheckName(reason, folder)) return Report(error, false, kPrefix, reason);
    if (!platform::IsFolder(folder)) {
        return Refuse(error, kPrefix, u"folder to be deleted does not exist");
    }
    const std::optional<bool> is_protected = IsProtected(reason, folder);
    if (!is_protected) return Report(error, false, kPrefix, reason);
    if (*is_protected) {
        return Refuse(error, kPrefix, u"the folder is a root, '..' or holds the current folder");
    }
    return Report(error, platform::RemoveFolder(reason, folder), kPrefix, reason);
}

bool WriteFileCommand(String& error, const SectionSettings& settings) {
    const String name = settings.Text(kWrittenFile);
    const String text = settings.Text(kWrittenText);
    const bool overwrite = settings.Flag(kWriteOverwrite);
    const TextForm form = ReadTextForm(settings, kWrittenForm);
    if (name.empty() || text.empty()) {
        return Refuse(error, u"Write File: ", u"file name or text is empty.");
    }
    ErrorRecord reason;
    const auto write = settings.Follows(Rule::WholeLines) ? WriteLine : WriteLoosely;
    return Report(error, write(reason, name, text, form, !overwrite), {}, reason);
}
