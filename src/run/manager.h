#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "base/notices.h"
#include "base/strings.h"
#include "check/job_check.h"
#include "check/secret_mask.h"
#include "config/configuration.h"
#include "platform/clock.h"
#include "run/logger_console.h"
#include "run/logger_masked.h"
#include "run/run_report.h"

// Runs a job: banner, job file, then its steps one after another.
class Manager {
public:
    // clock: measures the run and stamps log records; outlives the manager.
    explicit Manager(const platform::Clock& clock = platform::SystemClock()) : clock_(clock) {}

    // Settles the edition and the stream of messages, before anything is written; Run does it where
    // nobody has. What is wrong is left for Run to tell.
    void Settle(String& error, Configuration& configuration);

    // False when the run failed; `error` then holds the message of the failure that ended it. All
    // failures have been written through a logger, except in edition 1 that of opening a step's
    // log. "Could not find or load configuration file '%s'. Use -config command line switch to
    // define it. Default name is 'quillon.qpr'." "The job has mistakes: %u." behind its findings
    // "Failed steps: %s." where the run went on behind failed steps
    // "The report '%s' could not be written: %s" is written, and stands for no failure of the job
    bool Run(String& error, Configuration& configuration);

    // The exit statuses of the program.
    enum ExitStatus : int { kSucceeded = 0, kRunFailed = 2, kCommandLineRefused = 4 };
    // That of the run, once it has ended.
    ExitStatus StatusOf(bool succeeded) const {
        return succeeded ? kSucceeded : refused_command_line_ ? kCommandLineRefused : kRunFailed;
    }

    // Makes the logger of a step: a file when a name is in force, else the console. A "-Log" name
    // wins over the step's.
    // "Could not open log file '%s' for writing [%s]."
    bool OpenLog(String& error, const String& step_log_name, bool overwrite);

    // See run/report_error.h.
    static bool ReportError(String& error, Quillon::Logger& logger, StringView message);

private:
    void WriteBanner();
    void GiveOutputToData(Configuration& configuration);
    bool RunJob(String& error, Configuration& configuration);
    bool TakesFileOfJob(Configuration& configuration, const String& report) const;
    bool WriteReport(Configuration& configuration, bool succeeded, const String& error);
    void TakeNotice(StringView text, NoticeStream stream);
    bool LoadJob(String& error, Configuration& configuration, const String& path);
    bool ExamineCommandLine(String& error, Configuration& configuration);
    bool TellFindings(String& error, const Configuration& configuration,
                      const std::vector<Finding>& findings);
    bool Check(String& error, Configuration& configuration);
    bool RunSteps(String& error, Configuration& configuration);
    bool RunStep(String& error, Configuration& configuration, std::size_t index);
    bool RunReportedStep(String& error, Configuration& configuration, std::size_t index);
    bool OpenStepLog(String& error, const Configuration& configuration);
    bool RunSystemSection(String& error, Configuration& configuration);
    bool FailWithoutLog(String& error, Configuration& configuration, std::size_t index);
    static bool RunSystemCommand(String& error, Configuration& configuration);
    bool TellFailedSteps(String& error);

    const platform::Clock& clock_;
    std::optional<bool> settled_;  // not yet, or whether it could be
    String job_path_;
    bool silent_ = false;
    bool stop_on_error_ = true;
    bool refused_command_line_ = false;
    std::uint64_t run_start_ms_ = 0;
    String log_file_name_;
    SecretMask mask_;
    bool output_is_owned_ = false;  // by the data of a step
    Quillon::LoggerConsole console_;
    Quillon::LoggerMasked console_logger_{console_, mask_};
    std::unique_ptr<Quillon::Logger> step_log_;  // what a step's messages are written through
    std::unique_ptr<Quillon::LoggerMasked> active_logger_;  // the same, secrets hidden
    RunReport report_;
    std::optional<std::size_t> running_;     // the step that runs, from 0
    std::vector<std::size_t> failed_steps_;  // positions from 0
};
