// The text of a crash report, for the files that notice the crash.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

// The code of a C++ exception that nobody catches, on every system.
constexpr std::uint32_t kUncaughtException = 0xE06D7363;

struct LoadedModule {
    std::uintptr_t address;  // where it begins
    std::string name;        // the full name of its file, in the bytes that the report shows
};

// Takes the modules that reports may name, and all the memory that a report will need.
void PrepareCrashLine(std::vector<LoadedModule> modules);

// The report, with its line end: the code, the address, the activity that is going on and the
// module that begins highest at or below the address ("unknown" when all begin above it). Uses
// neither the heap nor a lock, so it may be called in a signal handler. Valid until the next call.
std::string_view CrashLine(std::uint32_t code, std::uintptr_t address);

}  // namespace platform
