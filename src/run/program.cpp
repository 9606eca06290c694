#include "config/configuration.h"
#include "platform/environment.h"
#include "platform/program_entry.h"
#include "run/manager.h"

namespace {

enum ExitStatus : int { kSuccess = 0, kRunFailed = 2, kCommandLineRefused = 4 };

}  // namespace

int ProgramMain(const std::vector<String>& arguments) {
    platform::PrepareProcess();
    String error;
    Configuration configuration;
    Manager manager;
    if (!configuration.ParseCommandLine(arguments)) return kCommandLineRefused;
    return manager.Run(error, configuration) ? kSuccess : kRunFailed;
}
