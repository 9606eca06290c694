// Files that an interrupted process takes along.
#pragma once

#include <csignal>
#include <string>

namespace platform {

// Holds the signals back that end a process from outside, for as long as it lives.
class SignalsHeld {
public:
    SignalsHeld();
    ~SignalsHeld();
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

private:
    sigset_t former_;
};

// While it lives, the file of that name is removed when SIGINT, SIGTERM or SIGHUP end the process.
// A signal that the process ignores (nohup) stays ignored.
class RemovedAtEnd {
public:
    explicit RemovedAtEnd(const std::string& name);
    ~RemovedAtEnd();
    RemovedAtEnd(const RemovedAtEnd&) = delete;
    RemovedAtEnd& operator=(const RemovedAtEnd&) = delete;

    struct Entry;

private:
    Entry& entry_;
};

}  // namespace platform
