#include "run/data_step.h"

#include <algorithm>
#include <array>

#include "base/activity_trail.h"
#include "core/logger.h"
#include "files/format.h"
#include "files/text.h"
#include "platform/console.h"
#include "run/manager.h"

DataStep::DataStep(Configuration& configuration, std::size_t index, const RunOptions& options,
                   Quillon::Logger& logger, const platform::Clock& clock)
    : configuration_(configuration),
      index_(index),
      options_(options),
      logger_(logger),
      clock_(clock),
      source_settings_(configuration, Section::Source),
      target_settings_(configuration, Section::Target) {}

bool DataStep::Run(String& error) {
    if (!DataProviders::DataProvider::Create(error, source_settings_, source_, logger_)) {
        return GoesOnAfter(error);  // nothing can be moved
    }
    if (!PrepareAll(error)) return false;
    const std::uint64_t processing_start_ms = clock_.TickMs();
    MeasureWidths(error);
    const String interval =
        SectionSettings(configuration_, Section::Settings).Text(u"ShowProgress");
    progress_interval_ =
        static_cast<std::uint64_t>(std::max<std::int64_t>(text::ToInteger(interval), 0));
    if (!MoveRows(error)) return false;
    const std::uint64_t processing_ms = clock_.TickMs() - processing_start_ms;
    if (target_ && !target_->Close(error)) return Manager::ReportError(error, logger_, {});
    if (source_) source_->Close();
    if (!options_.silent) WriteStatistics(processing_ms);
    return true;
}

// ---- Preparation ----

// Reports a failed preparation. True when the run goes on in spite of it; the text is then gone, so
// that it cannot come back as that of a later failure.
bool DataStep::GoesOnAfter(String& error) {
    Manager::ReportError(error, logger_, {});
    if (options_.stop_on_error) return false;
    error.clear();
    return true;
}

bool DataStep::PrepareAll(String& error) {
    return OpenSource(error) && CreateTarget(error) && CreateTransformers(error) &&
           OpenTarget(error);
}

// A source that could not be opened is not used; what else the step has still is.
bool DataStep::OpenSource(String& error) {
    if (source_->Open(error, source_settings_, rows_)) return true;
    source_.reset();
    return GoesOnAfter(error);
}

bool DataStep::CreateTarget(String& error) {
    return DataConsumers::DataConsumer::Create(error, target_settings_, target_, logger_, index_) ||
           GoesOnAfter(error);
}

bool DataStep::CreateTransformers(String& error) {
    const std::size_t count = configuration_.Step(index_).TransformCount();
    for (std::size_t i = 0; i < count; ++i) {
        configuration_.SetCurrentTransform(i);
        const SectionSettings settings(configuration_, Section::Transform);
        std::unique_ptr<DataTransformers::DataTransformer> transformer;
        if (DataTransformers::DataTransformer::Create(error, settings, transformer)) {
            transformers_.push_back(std::move(transformer));
        } else if (!GoesOnAfter(error)) {
            return false;
        }
    }
    return true;
}

bool DataStep::OpenTarget(String& error) {
    if (!target_) return true;
    if (!target_->Open(error, target_settings_)) {
        target_.reset();
        return GoesOnAfter(error) && TransformColumns(error);
    }
    if (!TransformColumns(error)) return false;
    return target_->Prepare(error, rows_) || GoesOnAfter(error);
}

bool DataStep::TransformColumns(String& error) {
    for (const auto& transformer : transformers_) {
        if (!transformer->Transform(error, rows_) && !GoesOnAfter(error)) return false;
    }
    return true;
}

// ---- Rows ----

// Reads the whole source once, so that fixed-width columns can be lined up, and opens it again. A
// source that describes its columns anew keeps the widths that were measured, and what the
// transformers made of the columns.
void DataStep::MeasureWidths(String& error) {
    const bool wanted = configuration_.GetBool(Section::Target, u"FixedWidth", false);
    if (!wanted || !source_ || !source_->CanReopen()) return;
    String ignored;  // the second reading meets the same failure and tells of it
    while (source_->Fetch(ignored, rows_, true)) {
    }
    std::vector<ColumnDefinition> measured = rows_.Columns;
    for (ColumnDefinition& column : measured) {
        if (column.MaxWidth != 0) column.RaiseMaxWidth(column.Name.size());  // a new name counts
    }
    source_->Close();
    if (!source_->Open(error, source_settings_, rows_)) source_.reset();  // told of at the end
    const std::size_t count = std::min(measured.size(), rows_.Columns.size());
    std::move(measured.begin(), measured.begin() + static_cast<std::ptrdiff_t>(count),
              rows_.Columns.begin());
}

bool DataStep::MoveRows(String& error) {
    const ScopedState state(u"Main loop");
    do {
        while (source_ && source_->Fetch(error, rows_, false)) {
            if (!MoveRow(error)) return Manager::ReportError(error, logger_, {});
        }
    } while (NextResultSet(error));
    return true;
}

bool DataStep::MoveRow(String& error) {
    if (!TransformRow(error)) return false;
    if (rows_.SkipRow) return true;
    if (target_ && !target_->Write(error, rows_)) return false;
    ++items_;
    ShowProgress();
    return true;
}

bool DataStep::TransformRow(String& error) {
    rows_.SkipRow = false;
    for (const auto& transformer : transformers_) {
        if (!transformer->Transform(error, rows_)) return false;
        if (rows_.SkipRow) break;
    }
    return true;
}

// Moves on to the source's next result set; false at the end. A target that cannot take it says so
// when it is written to. Reading that ended in a failure is told of here.
bool DataStep::NextResultSet(String& error) {
    const bool more = source_ && source_->HasMoreData(error, rows_);
    if (more && target_) {
        Manager::ReportError(error, logger_, {});  // of the reading that ended the last one
        error.clear();
        if (target_->NextResultSet(error, target_settings_)) target_->Prepare(error, rows_);
        Manager::ReportError(error, logger_, {});
    } else if (!error.empty()) {
        Manager::ReportError(error, logger_, u"HasMoreData: " + error);
    }
    error.clear();
    return more;
}

void DataStep::ShowProgress() const {
    if (options_.silent || progress_interval_ == 0 || items_ % progress_interval_ != 0) return;
    constexpr std::array<std::byte, 1> kDot{std::byte{'.'}};
    platform::WriteStandardOutput(kDot);
}

// The total counts from the start of the run, so it is cumulative over the steps.
void DataStep::WriteStatistics(std::uint64_t processing_ms) const {
    String ignored;
    const double total = static_cast<double>(clock_.TickMs() - options_.start_ms) / 1000.0;
    const double processing = static_cast<double>(processing_ms) / 1000.0;
    logger_.Write(
        ignored,
        Format(u"\nStep #%u: %I64u items done, total %3.3f seconds, processing %3.3f seconds.",
               index_, items_, total, processing),
        0);
    const std::uint64_t written = target_ ? target_->WrittenSize() : 0;
    constexpr double kShortestMeasured = 0.025;  // seconds; anything less says nothing of speed
    if (written == 0 || total <= kShortestMeasured) return;
    const double megabytes = static_cast<double>(written) * (1.0 / 1024) * (1.0 / 1024);
    logger_.Write(
        ignored, Format(u"%I64u Kbytes written or %5.2f Mb/sec.", written >> 10, megabytes / total),
        0);
}
