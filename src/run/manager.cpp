#include "run/manager.h"

#include <algorithm>
#include <new>

#include "base/activity_trail.h"
#include "base/notices.h"
#include "config/job_keys.h"
#include "config/section_settings.h"
#include "config/switches.h"
#include "consumers/file_target.h"
#include "files/format.h"
#include "platform/console.h"
#include "platform/file_system.h"
#include "run/banner.h"
#include "run/check_run.h"
#include "run/data_step.h"
#include "run/logger_file.h"
#include "run/report_error.h"
#include "run/step_place.h"
#include "run/step_selection.h"
#include "system/system_step.h"

namespace {

template <class Words>
Words GlobalWord(const Configuration& configuration, Key key) {
    return static_cast<Words>(configuration.Word(Section::Globals, key).value_or(0));
}

// Any value has always asked for the listing.
bool IsListed(const Configuration& configuration) {
    return configuration.IsStrict(*kListSwitch)
               ? configuration.Flag(Section::CommandLine, kListSwitch)
               : !configuration.Text(Section::CommandLine, kListSwitch).empty();
}

// Whether the command line alone is the job. One that names a job file wants that file.
bool IsQuickJob(const Configuration& configuration) {
    return configuration.Follows(Rule::QuickJobNeedsNoFile) &&
           configuration.CommandLine().Find(kConfigSwitch->name) == nullptr &&
           !configuration.Text(Section::CommandLine, kTypeSwitch).empty();
}

}  // namespace

bool Manager::ReportError(String& error, Quillon::Logger& logger, StringView message) {
    return ::ReportError(error, logger, message);
}

void Manager::Settle(String& error, Configuration& configuration) {
    const ScopedState state(u"Manager::Run");
    job_path_ = configuration.CommandLine().Find(kConfigSwitch->name)
                    ? configuration.Text(Section::CommandLine, kConfigSwitch)
                    : configuration.ProgramDirectory() + u"quillon.qpr";
    settled_ = configuration.Settle(error, job_path_);
    silent_ = configuration.Flag(Section::CommandLine, kSilentSwitch);
    if (GlobalWord<MessagesTo>(configuration, kMessagesTo) == MessagesTo::Error) {
        console_ = Quillon::LoggerConsole(Quillon::LoggerConsole::Stream::Error);
    }
}

// The edition and the stream of messages are settled before the banner, which is the first message.
// Where data owns standard output, the steps say which stream that is, so the job is read first.
// A mask for what the command line and the reading of the job may tell comes next, and the one that
// knows all of the job's secrets as soon as the job has been read.
bool Manager::Run(String& error, Configuration& configuration) {
    const ScopedState state(u"Manager::Run");
    if (!settled_) Settle(error, configuration);
    mask_ = SecretMask(configuration);
    const NoticeReceiver notices(
        [this](StringView text, NoticeStream stream) { TakeNotice(text, stream); });
    const bool reads_first = configuration.Follows(Rule::DataOwnsOutput);
    if (!reads_first) WriteBanner();
    report_.Begin(job_path_, clock_.UtcNow());
    const bool loaded = *settled_ && LoadJob(error, configuration, job_path_);
    if (reads_first) {
        if (loaded) GiveOutputToData(configuration);
        WriteBanner();
    }
    if (!loaded) ReportError(error, console_logger_, {});
    const bool succeeded = loaded && RunJob(error, configuration);
    return WriteReport(configuration, succeeded, error) && succeeded;
}

void Manager::WriteBanner() {
    String ignored;
    if (!silent_) console_logger_.Write(ignored, BannerLine(), 0);
}

// Messages keep out of data that a step of the run writes to standard output. The steps do not have
// the quick-job switches yet, as the listing shows the job without them.
void Manager::GiveOutputToData(Configuration& configuration) {
    if (configuration.CommandLine().Find(kCheckSwitch->name) != nullptr) return;
    const String output = configuration.Text(Section::CommandLine, kOutputSwitch);
    String told_later;
    std::vector<std::size_t> steps;
    SelectSteps(told_later, configuration, steps);
    for (const std::size_t index : steps) {
        configuration.SetCurrentStep(index);
        const SectionSettings target(configuration, Section::Target);
        output_is_owned_ |= configuration.Step(index).List(Section::System).Empty() &&
                            DataConsumers::FileTarget::OwnsStandardOutput(target, output);
    }
    if (output_is_owned_) {
        console_ = Quillon::LoggerConsole(Quillon::LoggerConsole::Stream::Error);
    }
}

// Runs a job that has been read.
bool Manager::RunJob(String& error, Configuration& configuration) {
    String ignored;
    mask_ = SecretMask(configuration);
    if (!ExamineCommandLine(error, configuration)) return false;
    report_.Describe(configuration);
    if (configuration.CommandLine().Find(kCheckSwitch->name) != nullptr) {
        return Check(error, configuration);
    }
    if (IsListed(configuration)) {
        configuration.Print(ignored, console_logger_,
                            [this](Section section, const ParameterSet::Element& element) {
                                return mask_.ShownValue(section, element);
                            });
    }
    if (!TellFindings(error, configuration, CheckJob(configuration, CheckDepth::Refusals))) {
        return false;
    }
    return RunSteps(error, configuration);
}

void Manager::TakeNotice(StringView text, NoticeStream stream) {
    const String masked = mask_.Masked(text);
    if (running_) report_.Step(*running_).warnings.push_back(masked.substr(0, masked.find(u'\n')));
    if (stream == NoticeStream::Output && !output_is_owned_) {
        platform::WriteOutputText(masked);
    } else {
        platform::WriteErrorText(masked);
    }
}

// Whether the report of a run that was refused would replace a file of the job. Only a job that has
// been read tells all of them.
bool Manager::TakesFileOfJob(Configuration& configuration, const String& report) const {
    if (!configuration.Follows(Rule::FilesMadeOnce)) return false;
    if (platform::RootedName(report) == platform::RootedName(job_path_)) return true;
    const std::vector<Finding> findings = CheckJob(configuration, CheckDepth::Refusals);
    return std::ranges::any_of(findings, &Finding::of_report);
}

bool Manager::WriteReport(Configuration& configuration, bool succeeded, const String& error) {
    const String path = configuration.Text(Section::CommandLine, kReportSwitch);
    if (path.empty() || (!succeeded && TakesFileOfJob(configuration, path))) return true;
    String failure;
    if (report_.Write(failure, path, mask_, StatusOf(succeeded), error, clock_.UtcNow())) {
        return true;
    }
    return ReportError(failure, console_logger_,
                       Format(u"The report '%s' could not be written: %s", path, failure));
}

bool Manager::LoadJob(String& error, Configuration& configuration, const String& path) {
    if (platform::PathExists(path)) return configuration.Read(error, path);
    if (IsQuickJob(configuration) && !configuration.AdditonalCmdLine(error, 0)) return false;
    if (configuration.StepCount() != 0) return true;
    error = Format(
        u"Could not find or load configuration file '%s'. Use -config command line switch to "
        u"define it. Default name is 'quillon.qpr'.",
        path);
    return false;
}

bool Manager::ExamineCommandLine(String& error, Configuration& configuration) {
    const bool checks = configuration.CommandLine().Find(kCheckSwitch->name) != nullptr;
    std::vector<Finding> findings =
        CheckSwitches(configuration, checks ? CheckDepth::Whole : CheckDepth::Refusals);
    std::vector<std::size_t> steps;
    if (findings.empty() && !SelectSteps(error, configuration, steps)) {
        findings.push_back({{}, true, error});
    }
    error.clear();
    refused_command_line_ = !TellFindings(error, configuration, findings);
    return !refused_command_line_;
}

// True when none of the findings is an error.
bool Manager::TellFindings(String& error, const Configuration& configuration,
                           const std::vector<Finding>& findings) {
    String ignored;
    for (const Finding& finding : findings) {
        console_logger_.Write(ignored, ShownFinding(configuration, finding), 0);
    }
    const auto errors = std::count_if(findings.begin(), findings.end(),
                                      [](const Finding& finding) { return finding.error; });
    if (errors == 0) return true;
    error = Format(u"The job has mistakes: %u.", errors);
    return false;
}

bool Manager::Check(String& error, Configuration& configuration) {
    std::vector<Finding> findings = CheckJob(configuration, CheckDepth::Whole);
    if (configuration.Word(Section::CommandLine, kCheckSwitch) == kCheckConnect) {
        CheckConnections(configuration, findings);
    }
    return TellFindings(error, configuration, findings);
}

bool Manager::RunSteps(String& error, Configuration& configuration) {
    stop_on_error_ = configuration.Flag(Section::Globals, kStopOnError);
    run_start_ms_ = clock_.TickMs();
    std::vector<std::size_t> steps;
    SelectSteps(error, configuration, steps);
    for (const std::size_t index : steps) {
        if (!RunStep(error, configuration, index)) return false;
    }
    return failed_steps_.empty() || TellFailedSteps(error);
}

bool Manager::TellFailedSteps(String& error) {
    String numbers;
    for (const std::size_t index : failed_steps_) {
        numbers += Format(u"%s%u", numbers.empty() ? u"" : u", ", index + 1);
    }
    return ReportError(error, *active_logger_, Format(u"Failed steps: %s.", numbers));
}

bool Manager::RunStep(String& error, Configuration& configuration, std::size_t index) {
    configuration.SetCurrentStep(index);
    if (!configuration.AdditonalCmdLine(error, index)) {
        return ReportError(error, console_logger_, {});
    }
    if (!OpenStepLog(error, configuration)) return FailWithoutLog(error, configuration, index);
    const bool done = RunReportedStep(error, configuration, index);
    // A failure that counts is remembered, so that the run does not end as if there were none.
    if (done || stop_on_error_ || !configuration.Follows(Rule::FailedStepsCount)) return done;
    failed_steps_.push_back(index);
    error.clear();
    return true;
}

// The console is where a message can still go. It ends the run, whatever `StopOnError` says.
bool Manager::FailWithoutLog(String& error, Configuration& configuration, std::size_t index) {
    if (configuration.Follows(Rule::PlacedMessages)) {
        error.insert(0, FailurePrefix(configuration, {Section::Settings}));
        ReportError(error, console_logger_, {});
    }
    StepReport& report = report_.Step(index);
    report.status = StepReport::Status::Failed;
    report.error = error;
    return false;
}

// Only a run that reports looks at the clock here.
bool Manager::RunReportedStep(String& error, Configuration& configuration, std::size_t index) {
    const bool reports = !configuration.Text(Section::CommandLine, kReportSwitch).empty();
    const std::uint64_t start_ms = reports ? clock_.TickMs() : 0;
    StepReport& report = report_.Step(index);
    running_ = index;
    bool done = false;
    if (report.command) {
        done = RunSystemSection(error, configuration);
        report.error = error;
    } else {
        const RunOptions options{silent_, stop_on_error_, run_start_ms_};
        DataStep step(configuration, index, options, *active_logger_, console_, clock_);
        done = step.Run(error);
        step.Describe(report);
    }
    running_.reset();
    report.status =
        done && report.error.empty() ? StepReport::Status::Done : StepReport::Status::Failed;
    if (reports) report.seconds = static_cast<double>(clock_.TickMs() - start_ms) / 1000.0;
    return done;
}

bool Manager::OpenStepLog(String& error, const Configuration& configuration) {
    log_file_name_ = configuration.Text(Section::CommandLine, kLogSwitch);
    const String step_log_name = configuration.Text(Section::Settings, kLog);
    const bool overwrite = configuration.Flag(Section::Settings, kLogOverwrite);
    return OpenLog(error, step_log_name, overwrite);
}

bool Manager::OpenLog(String& error, const String& step_log_name, bool overwrite) {
    if (log_file_name_.empty()) log_file_name_ = step_log_name;
    active_logger_.reset();
    if (step_log_) step_log_->Close();
    if (log_file_name_.empty()) {
        step_log_ = std::make_unique<Quillon::LoggerConsole>(console_);
    } else {
        step_log_ = std::make_unique<Quillon::LoggerFile>(clock_);
    }
    active_logger_ = std::make_unique<Quillon::LoggerMasked>(*step_log_, mask_);
    if (log_file_name_.empty() || step_log_->Open(error, log_file_name_, overwrite)) return true;
    error = Format(u"Could not open log file '%s' for writing [%s].", log_file_name_, error);
    return false;
}

bool Manager::RunSystemCommand(String& error, Configuration& configuration) {
    const SectionSettings settings(configuration, Section::System);
    if (!configuration.Follows(Rule::MemoryFailsStep)) return RunSystemStep(error, settings);
    try {
        return RunSystemStep(error, settings);
    } catch (const std::bad_alloc&) {
        error = kOutOfMemory;
        return false;
    }
}

bool Manager::RunSystemSection(String& error, Configuration& configuration) {
    if (RunSystemCommand(error, configuration)) return true;
    if (configuration.Follows(Rule::PlacedMessages)) {
        error.insert(0, FailurePrefix(configuration, {Section::System}));
    }
    ReportError(error, *active_logger_, {});
    if (stop_on_error_ || configuration.Follows(Rule::FailedStepsCount)) return false;
    error.clear();
    return true;
}
