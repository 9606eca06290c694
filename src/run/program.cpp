#include <optional>

#include "base/utf8.h"
#include "check/help_text.h"
#include "check/key_catalogue.h"
#include "config/configuration.h"
#include "config/switches.h"
#include "core/key_values.h"
#include "files/format.h"
#include "platform/console.h"
#include "platform/environment.h"
#include "platform/memory_guard.h"
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

// A run of the program, from its command line on.
class Program {
public:
    // Takes in the command line and settles how the job is run. The exit status when the run has
    // ended with that.
    std::optional<int> Begin(const std::vector<String>& arguments) {
        platform::PrepareProcess();
        if (!configuration_.ParseCommandLine(arguments)) return Manager::kCommandLineRefused;
        if (const auto* help = configuration_.CommandLine().Find(kHelpSwitch->name)) {
            return ShowHelp(help->value);
        }
        if (configuration_.Flag(Section::CommandLine, kVersionSwitch)) {
            return ShowText(BannerLine() + u"\n") ? Manager::kSucceeded : Manager::kRunFailed;
        }
        manager_.Settle(error_, configuration_);
        return std::nullopt;
    }

    bool EndsForMemory() const { return configuration_.Follows(Rule::MemoryFailsStep); }

    int Run() { return manager_.StatusOf(manager_.Run(error_, configuration_)); }

private:
    String error_;
    Configuration configuration_;
    Manager manager_;
};

}  // namespace

// Where want of memory is a crash, nothing may catch it: the crash report tells what was going on.
int ProgramMain(const std::vector<String>& arguments) {
    std::optional<Program> program;
    std::optional<int> status;
    const bool begun = platform::WithinMemory([&] {
        program.emplace();
        status = program->Begin(arguments);
    });
    if (!begun || status) return status.value_or(Manager::kRunFailed);
    if (!program->EndsForMemory()) return program->Run();
    platform::WithinMemory([&] { status = program->Run(); });
    return status.value_or(Manager::kRunFailed);
}
