#pragma once

#include <cstdint>
#include <memory>

#include "base/strings.h"
#include "config/configuration.h"
#include "platform/clock.h"
#include "run/logger_console.h"

// Runs a job: banner, job file, then its steps one after another.
class Manager {
public:
    // clock: measures the run and stamps log records; outlives the manager.
    explicit Manager(const platform::Clock& clock = platform::SystemClock()) : clock_(clock) {}

    // False when the run failed; `error` then holds the message of the failure that ended it. All
    // failures have been written through a logger, except that of opening a step's log.
    // "Could not find or load configuration file '%s'. Use -config command line switch to define
    // it. Default name is 'quillon.qpr'."
    bool Run(String& error, Configuration& configuration);

    // Makes the logger of a step: a file when a name is in force, else the console. A "-Log" name
    // wins over the step's.
    // "Could not open log file '%s' for writing [%s]."
    bool OpenLog(String& error, const String& step_log_name, bool overwrite);

    // Reports a failure: a message that is not empty replaces `error`, which is then written
    // through `logger` unless there is nothing to write. Always false, so that a caller can return
    // it.
    static bool ReportError(String& error, Quillon::Logger& logger, StringView message);

private:
    bool LoadJob(String& error, Configuration& configuration);
    bool RunStep(String& error, Configuration& configuration, std::size_t index);
    bool OpenStepLog(String& error, const Configuration& configuration);
    bool RunSystemSection(String& error, Configuration& configuration);

    const platform::Clock& clock_;
    bool silent_ = false;
    bool stop_on_error_ = true;
    std::uint64_t run_start_ms_ = 0;
    String log_file_name_;
    Quillon::LoggerConsole console_logger_;
    std::unique_ptr<Quillon::Logger> active_logger_;
};
