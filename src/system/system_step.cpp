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
};

constexpr CommandWord kCommands[] = {
    {u"CopyFile", CopyFileCommand},     {u"MoveFile", MoveFileCommand},
    {u"CopyFolder", CopyFolderCommand}, {u"MoveFolder", MoveFolderCommand},
    {u"DeleteFile", DeleteFileCommand}, {u"DeleteFolder", DeleteFolderCommand},
    {u"WriteFile", WriteFileCommand},   {u"HttpCall", HttpCall},
};

}  // namespace

bool RunSystemStep(String& error, const SectionSettings& settings) {
    const String word = settings.ResolvedText(u"Command");
    for (const CommandWord& command : kCommands) {
        if (text::EqualsIgnoringCase(word, command.word)) return command.run(error, settings);
    }
    error = Format(u"System step contains unsupported command '%s'", word);
    return false;
}
