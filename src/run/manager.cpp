#include "run/manager.h"

#include "base/activity_trail.h"
#include "config/section_settings.h"
#include "files/format.h"
#include "platform/file_system.h"
#include "run/banner.h"
#include "run/data_step.h"
#include "run/logger_file.h"
#include "system/system_step.h"

bool Manager::ReportError(String& error, Quillon::Logger& logger, StringView message) {
    if (!message.empty()) error = message;
    String ignored;
    if (!error.empty()) logger.Write(ignored, error, 0);
    return false;
}

bool Manager::Run(String& error, Configuration& configuration) {
    const ScopedState state(u"Manager::Run");
    silent_ = configuration.GetBool(Section::CommandLine, u"-silent", false);
    String ignored;
    if (!silent_) console_logger_.Write(ignored, BannerLine(), 0);
    if (!LoadJob(error, configuration)) return false;
    if (!configuration.GetValue(Section::CommandLine, u"-Q", Quotes::Keep).empty()) {
        configuration.Print(ignored, console_logger_);
    }
    stop_on_error_ = Configuration::GetBool(configuration.Globals(), u"StopOnError", true);
    run_start_ms_ = clock_.TickMs();
    for (std::size_t i = 0; i < configuration.StepCount(); ++i) {
        if (!RunStep(error, configuration, i)) return false;
    }
    return true;
}

bool Manager::LoadJob(String& error, Configuration& configuration) {
    const String path = configuration.GetValue(Section::CommandLine, u"-config", Quotes::Strip,
                                               configuration.ProgramDirectory() + u"quillon.qpr");
    if (platform::PathExists(path)) {
        return configuration.Read(error, path) || ReportError(error, console_logger_, {});
    }
    if (configuration.StepCount() != 0) return true;
    return ReportError(
        error, console_logger_,
        Format(u"Could not find or load configuration file '%s'. Use -config command line switch "
               u"to define it. Default name is 'quillon.qpr'.",
               path));
}

bool Manager::RunStep(String& error, Configuration& configuration, std::size_t index) {
    configuration.SetCurrentStep(index);
    if (!configuration.AdditonalCmdLine(error, index)) {
        return ReportError(error, console_logger_, {});
    }
    if (!OpenStepLog(error, configuration)) return false;
    if (!configuration.Step(index).List(Section::System).Empty()) {
        return RunSystemSection(error, configuration);
    }
    const RunOptions options{silent_, stop_on_error_, run_start_ms_};
    return DataStep(configuration, index, options, *active_logger_, clock_).Run(error);
}

bool Manager::OpenStepLog(String& error, const Configuration& configuration) {
    log_file_name_ = configuration.GetValue(Section::CommandLine, u"-Log", Quotes::Strip);
    String step_log_name =
        configuration.GetValue(Section::Settings, u"Log", Quotes::Strip, log_file_name_);
    configuration.ResolveAllMacros(step_log_name);
    const bool overwrite = configuration.GetBool(Section::Settings, u"Overwrite", false);
    return OpenLog(error, step_log_name, overwrite);
}

bool Manager::OpenLog(String& error, const String& step_log_name, bool overwrite) {
    if (log_file_name_.empty()) log_file_name_ = step_log_name;
    if (active_logger_) active_logger_->Close();
    if (log_file_name_.empty()) {
        active_logger_ = std::make_unique<Quillon::LoggerConsole>();
        return true;
    }
    active_logger_ = std::make_unique<Quillon::LoggerFile>(clock_);
    if (active_logger_->Open(error, log_file_name_, overwrite)) return true;
    error = Format(u"Could not open log file '%s' for writing [%s].", log_file_name_, error);
    return false;
}

bool Manager::RunSystemSection(String& error, Configuration& configuration) {
    if (RunSystemStep(error, SectionSettings(configuration, Section::System))) return true;
    ReportError(error, *active_logger_, {});
    if (stop_on_error_) return false;
    error.clear();
    return true;
}
