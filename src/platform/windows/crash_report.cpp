#include "platform/crash_report.h"

#include <windows.h>

#include <psapi.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <span>

#include "base/utf8.h"
#include "platform/console.h"
#include "platform/crash_line.h"
#include "platform/windows/handle.h"
#include "platform/windows/wide.h"

namespace platform {
namespace {

constexpr DWORD kFatalAppExit = 0x40000015;  // STATUS_FATAL_APP_EXIT, the system's code for abort
constexpr ULONG kStackForReport = 65536;

LPTOP_LEVEL_EXCEPTION_FILTER g_former_filter = nullptr;
std::terminate_handler g_former_terminate = nullptr;
void (*g_former_abort)(int) = SIG_DFL;
std::atomic_flag g_reported;

void Write(std::string_view line) {
    static std::array<wchar_t, 34000> text;  // the longest path and the words around it
    if (!StandardOutputIsTerminal()) {
        WriteStandardOutput(std::as_bytes(std::span(line)));
        return;
    }
    const int length = ::MultiByteToWideChar(CP_UTF8, 0, line.data(), static_cast<int>(line.size()),
                                             text.data(), static_cast<int>(text.size()));
    ::WriteConsoleW(::GetStdHandle(STD_OUTPUT_HANDLE), text.data(), static_cast<DWORD>(length),
                    nullptr, nullptr);
}

LONG WINAPI OnException(EXCEPTION_POINTERS* exception) {
    const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
    if (!g_reported.test_and_set()) {
        Write(CrashLine(record.ExceptionCode,
                        reinterpret_cast<std::uintptr_t>(record.ExceptionAddress)));
    }
    return EXCEPTION_EXECUTE_HANDLER;
}

// The runtime would end the process quietly, with exit status 3. As exceptions these two reach the
// report and whoever reads the exit status like any other fault.
void OnAbort(int) { ::RaiseException(kFatalAppExit, EXCEPTION_NONCONTINUABLE, 0, nullptr); }

[[noreturn]] void OnTerminate() {
    if (std::current_exception() != nullptr) {
        ::RaiseException(kUncaughtException, EXCEPTION_NONCONTINUABLE, 0, nullptr);
    }
    std::abort();
}

std::vector<HMODULE> ModuleHandles(HANDLE process) {
    std::vector<HMODULE> handles(256);
    for (;;) {
        const auto room = static_cast<DWORD>(handles.size() * sizeof(HMODULE));
        DWORD needed = 0;
        if (::K32EnumProcessModules(process, handles.data(), room, &needed) == FALSE) return {};
        handles.resize(needed / sizeof(HMODULE));
        if (needed <= room) return handles;
    }
}

std::vector<LoadedModule> LoadedModules() {
    constexpr DWORD kLongestPath = 32768;
    const Handle process(
        ::OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, ::GetCurrentProcessId()));
    std::vector<LoadedModule> modules;
    std::vector<wchar_t> name(kLongestPath);
    for (const HMODULE handle : ModuleHandles(process.Get())) {
        const DWORD length =
            ::K32GetModuleFileNameExW(process.Get(), handle, name.data(), kLongestPath);
        modules.push_back(
            {reinterpret_cast<std::uintptr_t>(handle), ToUtf8(FromWide(name.data(), length))});
    }
    return modules;
}

}  // namespace

CrashReport::CrashReport() {
    PrepareCrashLine(LoadedModules());
    ULONG stack = kStackForReport;  // kept free for the report of a stack overflow
    ::SetThreadStackGuarantee(&stack);
    g_former_filter = ::SetUnhandledExceptionFilter(OnException);
    g_former_terminate = std::set_terminate(OnTerminate);
    g_former_abort = std::signal(SIGABRT, OnAbort);
}

CrashReport::~CrashReport() {
    std::signal(SIGABRT, g_former_abort);
    std::set_terminate(g_former_terminate);
    ::SetUnhandledExceptionFilter(g_former_filter);
}

}  // namespace platform
