#include <optional>

#include "base/utf8.h"
#include "platform/crash_report.h"
#include "platform/memory_guard.h"
#include "platform/program_entry.h"

int main(int count, char** values) {
    std::optional<platform::CrashReport> crash_report;
    std::vector<String> arguments;
    const bool begun = platform::WithinMemory([&] {
        crash_report.emplace();
        for (int i = 1; i < count; ++i) arguments.push_back(FromNativeBytes(values[i]));
    });
    return begun ? ProgramMain(arguments) : kRunFailedStatus;
}
