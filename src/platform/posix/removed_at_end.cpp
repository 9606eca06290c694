#include "platform/posix/removed_at_end.h"

#include <unistd.h>

#include <array>
#include <atomic>
#include <climits>
#include <deque>

namespace platform {

// Entries are used again but never freed, so a handler that runs beside other threads can follow
// the list whatever they do.
struct RemovedAtEnd::Entry {
    std::array<char, PATH_MAX> name{};
    std::atomic<bool> used = false;
    Entry* next = nullptr;
};

namespace {

constexpr std::array kEndings = {SIGINT, SIGTERM, SIGHUP};

std::atomic<RemovedAtEnd::Entry*> g_entries = nullptr;

// Runs with the default action back in place. The signal that it raises is held back until it
// returns.
void OnEnding(int signal) {
    for (auto* entry = g_entries.load(); entry != nullptr; entry = entry->next) {
        if (entry->used) ::unlink(entry->name.data());
    }
    ::raise(signal);
}

void TakeSignals() {
    for (const int signal : kEndings) {
        struct sigaction action {};
        ::sigaction(signal, nullptr, &action);
        if (action.sa_handler != SIG_DFL) continue;
        action.sa_handler = OnEnding;
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        ::sigaction(signal, &action, nullptr);
    }
}

RemovedAtEnd::Entry& UnusedEntry() {
    static std::deque<RemovedAtEnd::Entry> entries;
    for (RemovedAtEnd::Entry& entry : entries) {
        if (!entry.used) return entry;
    }
    if (entries.empty()) TakeSignals();
    RemovedAtEnd::Entry& entry = entries.emplace_back();
    entry.next = g_entries;
    g_entries = &entry;
    return entry;
}

}  // namespace

SignalsHeld::SignalsHeld() : former_{} {
    sigset_t held{};
    ::sigemptyset(&held);
    for (const int signal : kEndings) ::sigaddset(&held, signal);
    ::sigprocmask(SIG_BLOCK, &held, &former_);
}

SignalsHeld::~SignalsHeld() { ::sigprocmask(SIG_SETMASK, &former_, nullptr); }

RemovedAtEnd::RemovedAtEnd(const std::string& name) : entry_(UnusedEntry()) {
    entry_.name[name.copy(entry_.name.data(), entry_.name.size() - 1)] = '\0';
    entry_.used = true;
}

RemovedAtEnd::~RemovedAtEnd() { entry_.used = false; }

}  // namespace platform
