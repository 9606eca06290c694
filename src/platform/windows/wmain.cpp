#include <optional>
#include <string>

#include "platform/crash_report.h"
#include "platform/memory_guard.h"
#include "platform/program_entry.h"
#include "platform/windows/wide.h"

int wmain(int count, wchar_t** values) {
    std::optional<platform::CrashReport> crash_report;
    std::vector<String> arguments;
    const bool begun = platform::WithinMemory([&] {
        crash_report.emplace();
        for (int i = 1; i < count; ++i) {
            arguments.emplace_back(
                platform::FromWide(values[i], std::char_traits<wchar_t>::length(values[i])));
        }
    });
    return begun ? ProgramMain(arguments) : kRunFailedStatus;
}
