#include "base/notices.h"
#include "config/configuration.h"
#include "platform/console.h"
#include "platform/environment.h"
#include "platform/program_entry.h"
#include "run/manager.h"

namespace {

enum ExitStatus : int { kSuccess = 0, kRunFailed = 2, kCommandLineRefused = 4 };

void ShowNotice(StringView text, NoticeStream stream) {
    if (stream == NoticeStream::Output) {
        platform::WriteOutputText(text);
    } else {
        platform::WriteErrorText(text);
    }
}

}  // namespace

int ProgramMain(const std::vector<String>& arguments) {
    platform::PrepareProcess();
    const NoticeReceiver receiver(ShowNotice);
    String error;
    Configuration configuration;
    Manager manager;
    if (!configuration.ParseCommandLine(arguments)) return kCommandLineRefused;
    return manager.Run(error, configuration) ? kSuccess : kRunFailed;
}
