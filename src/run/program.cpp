#include "base/utf8.h"
#include "check/help_text.h"
#include "check/key_catalogue.h"
#include "config/configuration.h"
#include "config/switches.h"
#include "core/key_values.h"
#include "files/format.h"
#include "platform/console.h"
#include "platform/environment.h"
#include "platform/program_entry.h"
#include "run/banner.h"
#include "run/manager.h"

namespace {

bool ShowText(StringView text) {
    const std::string bytes = ToUtf8(text);
    return platform::WriteStandardOutput(std::as_bytes(std::span(bytes)));
}

// Pages that are redirected into files are the same on every system, so lines end with LF.
int ShowHelp(StringView word) {
    const String help = HelpOn(word);
    if (!help.empty()) return ShowText(help) ? Manager::kSucceeded : Manager::kRunFailed;
    const StringView nearest = NearestHelpWord(word);
    platform::WriteErrorText(
        Format(u"There is no help on '%s'.%s\n", word,
               nearest.empty() ? String() : Format(u" Did you mean '%s'?", nearest)));
    return Manager::kCommandLineRefused;
}

}  // namespace

int ProgramMain(const std::vector<String>& arguments) {
    platform::PrepareProcess();
    String error;
    Configuration configuration;
    Manager manager;
    if (!configuration.ParseCommandLine(arguments)) return Manager::kCommandLineRefused;
    if (const auto* help = configuration.CommandLine().Find(kHelpSwitch->name)) {
        return ShowHelp(help->value);
    }
    if (configuration.Flag(Section::CommandLine, kVersionSwitch)) {
        return ShowText(BannerLine() + u"\n") ? Manager::kSucceeded : Manager::kRunFailed;
    }
    const bool succeeded = manager.Run(error, configuration);
    return manager.StatusOf(succeeded);
}
