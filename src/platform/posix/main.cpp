#include "base/utf8.h"
#include "platform/crash_report.h"
#include "platform/program_entry.h"

int main(int count, char** values) {
    const platform::CrashReport crash_report;
    std::vector<String> arguments;
    for (int i = 1; i < count; ++i) arguments.push_back(FromNativeBytes(values[i]));
    return ProgramMain(arguments);
}
