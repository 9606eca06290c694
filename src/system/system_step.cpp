#include "system/system_step.h"

#include "files/format.h"
#include "files/text.h"
#include "system/file_commands.h"
#include "system/http_call.h"

namespace {

using Command = bool (*)(String& error, const SectionSettings& settings);

struct CommandWord {
    StringView word;
    Command run;
    KeyList (*keys)();
};

constexpr CommandWord kCommands[] = {
    {u"CopyFile", CopyFileCommand, FileNameKeys},
    {u"MoveFile", MoveFileCommand, FileNameKeys},
    {u"CopyFolder", CopyFolderCommand, CopyFolderKeys},
    {u"MoveFolder", MoveFolderCommand, MoveFolderKeys},
    {u"DeleteFile", DeleteFileCommand, DeleteFileKeys},
    {u"DeleteFolder", DeleteFolderCommand, DeleteFolderKeys},
    {u"WriteFile", WriteFileCommand, WriteFileKeys},
    {u"HttpCall", HttpCall, HttpCallKeys},
};

}  // namespace

std::vector<TypeEntry> SystemCommands() {
    std::vector<TypeEntry> commands;
    for (const CommandWord& command : kCommands) commands.push_back({command.word, command.keys});
    return commands;
}

bool RunSystemStep(String& error, const SectionSettings& settings) {
    const String word = settings.Text(kCommand);
    for (const CommandWord& command : kCommands) {
        if (text::EqualsIgnoringCase(word, command.word)) return command.run(error, settings);
    }
    error = Format(u"System step contains unsupported command '%s'", word);
    return false;
}
