#include "platform/crash_report.h"

#include <link.h>
#include <ucontext.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <limits>
#include <new>
#include <span>
#include <system_error>

#include "platform/console.h"
#include "platform/crash_line.h"

namespace platform {
namespace {

constexpr std::array kFaults = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};

std::array<struct sigaction, kFaults.size()> g_former_actions;
std::terminate_handler g_former_terminate = nullptr;
std::atomic_flag g_reported;

// The main thread's own stack is of no use once it has overflowed.
alignas(16) std::array<char, 65536> g_signal_stack;

void Report(std::uint32_t code, std::uintptr_t address) {
    if (g_reported.test_and_set()) return;
    WriteStandardOutput(std::as_bytes(std::span(CrashLine(code, address))));
}

// The instruction that faulted, as Windows tells it; after a call to a bad address that is where it
// led. The address that could not be reached would name a module that has nothing to do with it.
std::uintptr_t FaultAddress(const ucontext_t& context) {
    return static_cast<std::uintptr_t>(context.uc_mcontext.gregs[REG_RIP]);
}

// Runs with the default action back in place. The signal that it raises is held back until it
// returns, so a core dump shows the fault and not this function.
void OnFault(int signal, siginfo_t*, void* context) {
    Report(static_cast<std::uint32_t>(signal),
           FaultAddress(*static_cast<const ucontext_t*>(context)));
    ::raise(signal);
}

// Without an exception (a pure virtual call, say) the abort that follows is what is reported.
[[noreturn]] void OnTerminate() {
    if (std::current_exception() != nullptr) {
        Report(kUncaughtException, reinterpret_cast<std::uintptr_t>(__builtin_return_address(0)));
    }
    g_former_terminate();  // tells on standard error what was thrown, and aborts
    std::abort();
}

bool HasHandler(const struct sigaction& action) {
    return action.sa_handler != SIG_DFL && action.sa_handler != SIG_IGN;
}

// What somebody else already handles (a sanitizer, a preloaded crash reporter) stays theirs: they
// were asked for, and tell more.
void TakeSignals() {
    struct sigaction action {};
    action.sa_sigaction = OnFault;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK | static_cast<int>(SA_RESETHAND);
    for (std::size_t i = 0; i < kFaults.size(); ++i) {
        ::sigaction(kFaults[i], nullptr, &g_former_actions[i]);
        if (!HasHandler(g_former_actions[i])) ::sigaction(kFaults[i], &action, nullptr);
    }
    stack_t stack{};
    ::sigaltstack(nullptr, &stack);
    if ((stack.ss_flags & SS_DISABLE) == 0) return;
    stack = {.ss_sp = g_signal_stack.data(), .ss_flags = 0, .ss_size = g_signal_stack.size()};
    ::sigaltstack(&stack, nullptr);
}

constexpr int kNoMemory = 1;

int AddModule(dl_phdr_info* info, std::size_t, void* modules) {
    std::uintptr_t lowest = std::numeric_limits<std::uintptr_t>::max();
    for (const auto& segment : std::span(info->dlpi_phdr, info->dlpi_phnum)) {
        if (segment.p_type == PT_LOAD) lowest = std::min<std::uintptr_t>(lowest, segment.p_vaddr);
    }
    std::string name = info->dlpi_name;
    std::error_code ignored;
    // The loader does not name the program.
    if (name.empty()) name = std::filesystem::read_symlink("/proc/self/exe", ignored).native();
    static_cast<std::vector<LoadedModule>*>(modules)->push_back(
        {static_cast<std::uintptr_t>(info->dlpi_addr) + lowest, std::move(name)});
    return 0;
}

// No exception may pass through the loader.
int AddModuleInMemory(dl_phdr_info* info, std::size_t size, void* modules) {
    try {
        return AddModule(info, size, modules);
    } catch (const std::bad_alloc&) {
        return kNoMemory;
    }
}

std::vector<LoadedModule> LoadedModules() {
    std::vector<LoadedModule> modules;
    if (::dl_iterate_phdr(AddModuleInMemory, &modules) == kNoMemory) throw std::bad_alloc();
    return modules;
}

}  // namespace

CrashReport::CrashReport() {
    PrepareCrashLine(LoadedModules());
    TakeSignals();
    g_former_terminate = std::set_terminate(OnTerminate);
}

CrashReport::~CrashReport() {
    std::set_terminate(g_former_terminate);
    for (std::size_t i = 0; i < kFaults.size(); ++i) {
        ::sigaction(kFaults[i], &g_former_actions[i], nullptr);
    }
}

}  // namespace platform
