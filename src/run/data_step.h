#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "base/strings.h"
#include "config/configuration.h"
#include "config/job_keys.h"
#include "config/section_settings.h"
#include "consumers/data_consumer.h"
#include "core/row_set.h"
#include "platform/clock.h"
#include "providers/data_provider.h"
#include "run/progress_line.h"
#include "run/run_report.h"
#include "run/step_place.h"
#include "transformers/data_transformer.h"

namespace Quillon {
class Logger;
class LoggerConsole;
}  // namespace Quillon

// What a step needs to know of the run that it belongs to.
struct RunOptions {
    bool silent = false;         // no progress, no statistics
    bool stop_on_error = true;   // a failed preparation ends the run
    std::uint64_t start_ms = 0;  // tick at the start of the run
};

// Moves the data of one step: source, transformers, target.
class DataStep {
public:
    // index: of the step, from 0. console: takes the progress dots. All references outlive the
    // step.
    DataStep(Configuration& configuration, std::size_t index, const RunOptions& options,
             Quillon::Logger& logger, const Quillon::LoggerConsole& console,
             const platform::Clock& clock);

    // Runs the step whole and writes its statistics. False when it failed as a whole; the failure
    // has then been written through the logger.
    bool Run(String& error);

    // Notes what has been moved, after Run.
    void Describe(StepReport& report) const;

private:
    bool RunThrough(String& error);
    void ReadSettings();
    bool PrepareAll(String& error);
    bool OpenSource(String& error);
    bool CreateTarget(String& error);
    bool CreateTransformers(String& error);
    bool OpenTarget(String& error);
    bool TransformColumns(String& error);
    bool TransformNextColumns(String& error);
    bool CloseAll(String& error);

    bool MeasureWidths(String& error);
    bool MeasureRead(String& error);
    bool MeasureWritten(String& error);
    bool MeasureResultSet(String& error);
    bool ReopenSource(String& error);
    void TakeWidths();
    bool MoveRows(String& error);
    bool FetchRow(String& error);
    bool MoveRow(String& error);
    bool NextResultSet(String& error);
    bool BeginNextResultSet(String& error);
    bool TransformRow(String& error);
    bool EndReading(String& error);

    void Report(String& error);
    bool GoOnWithout(String& error);
    void TakeFailedRow();
    bool Fail(String& error);
    void ShowProgress();
    void WriteLosses() const;
    void WriteStatistics(std::uint64_t processing_ms) const;

    Configuration& configuration_;
    const std::size_t index_;
    const RunOptions options_;
    Quillon::Logger& logger_;
    const Quillon::LoggerConsole& console_;
    const platform::Clock& clock_;
    const SectionSettings source_settings_;
    const SectionSettings target_settings_;
    OnReadError on_read_error_ = OnReadError::End;
    std::uint64_t dot_interval_ = 0;  // rows between two dots, 0 for none
    std::optional<ProgressLine> progress_line_;

    // Destroyed from the last to the first.
    RowSet rows_;
    std::unique_ptr<DataProviders::DataProvider> source_;  // null when it cannot be used
    std::unique_ptr<DataConsumers::DataConsumer> target_;  // likewise, and in a step without one
    std::vector<std::unique_ptr<DataTransformers::DataTransformer>> transformers_;
    String failure_;                                      // the last one that was reported
    StepRole at_work_;                                    // for the message of a failure
    std::vector<std::vector<std::uint64_t>> set_widths_;  // measured, of each result set
    std::size_t next_set_ = 0;                            // in set_widths_
    String measuring_failure_;  // what ended the reading that measured widths, if it failed
    bool failed_ = false;       // reading or going on has failed the step
    std::uint64_t rows_read_ = 0;
    std::uint64_t items_ = 0;
    std::uint64_t left_out_ = 0;  // rows that a transformer wished away
};
