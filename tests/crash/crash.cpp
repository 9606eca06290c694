// Ends in a fault, while the activity trail says "Testing" above an activity that has ended.
// usage: quillon_crash FAULT [after]
// "after": the fault comes once the crash report is not there any more.
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>

#include "base/activity_trail.h"
#include "platform/crash_report.h"

namespace {

void ReadNull() {
    const volatile int* volatile nothing = nullptr;
    static_cast<void>(*nothing);
}

void CallAddress(std::uintptr_t address) {
    void (*volatile function)() = std::bit_cast<void (*)()>(address);
    function();
}

void DivideByZero() {
    volatile int many = 100, zero = 0;
    many = many / zero;
}

volatile bool g_endless = true;

int OverflowStack() {
    volatile char room[4096];
    room[0] = 1;
    return g_endless ? OverflowStack() + room[0] : 0;
}

[[noreturn]] void Throw() { throw std::runtime_error("thrown by the test"); }
void ThrowThroughNoexcept() noexcept { Throw(); }  // NOLINT(bugprone-exception-escape): the fault

const std::map<std::string, std::function<void()>> kFaults = {
    {"null", ReadNull},
    {"call-above", [] { CallAddress(0x7FFFFFFE0000); }},  // the end of what programs can address
    {"call-below", [] { CallAddress(0x10); }},
    {"instruction", [] { __builtin_trap(); }},
    {"division", DivideByZero},
    {"stack", OverflowStack},
    {"abort", std::abort},
    {"exception", Throw},
    {"noexcept", ThrowThroughNoexcept},
    {"terminate", std::terminate},
};

}  // namespace

int main(int count, char** values) {
    std::optional<platform::CrashReport> report(std::in_place);
    const ScopedState outer(u"Testing");
    { const ScopedState inner(u"Done"); }
    if (count < 2) return EXIT_FAILURE;
    if (count > 2) report.reset();
    kFaults.at(values[1])();
    return EXIT_FAILURE;
}
