#include "run/data_step.h"

#include <algorithm>
#include <new>

#include "base/activity_trail.h"
#include "base/notices.h"
#include "core/logger.h"
#include "files/format.h"
#include "platform/console.h"
#include "platform/file_system.h"
#include "run/logger_console.h"
#include "run/report_error.h"

DataStep::DataStep(Configuration& configuration, std::size_t index, const RunOptions& options,
                   Quillon::Logger& logger, const Quillon::LoggerConsole& console,
                   const platform::Clock& clock)
    : configuration_(configuration),
      index_(index),
      options_(options),
      logger_(logger),
      console_(console),
      clock_(clock),
      source_settings_(configuration, Section::Source),
      target_settings_(configuration, Section::Target) {}

// Where want of memory is a crash, nothing may catch it: the crash report tells what was going on.
bool DataStep::Run(String& error) {
    if (!configuration_.Follows(Rule::MemoryFailsStep)) return RunThrough(error);
    try {
        return RunThrough(error);
    } catch (const std::bad_alloc&) {
        error = kOutOfMemory;
        return Fail(error);
    }
}

bool DataStep::RunThrough(String& error) {
    if (!DataProviders::DataProvider::Create(error, source_settings_, source_, logger_)) {
        return GoOnWithout(error);  // nothing can be moved
    }
    if (!PrepareAll(error)) return false;
    const std::uint64_t processing_start_ms = clock_.TickMs();
    ReadSettings();
    if (!MeasureWidths(error) || !MoveRows(error)) return false;
    const std::uint64_t processing_ms = clock_.TickMs() - processing_start_ms;
    if (!CloseAll(error)) return false;
    if (!options_.silent) WriteStatistics(processing_ms);
    return true;
}

void DataStep::ReadSettings() {
    const SectionSettings settings(configuration_, Section::Settings);
    dot_interval_ =
        static_cast<std::uint64_t>(std::max<std::int64_t>(settings.Number(kShowProgress), 0));
    on_read_error_ = settings.Word(kOnReadError, OnReadError::End);
    const Progress progress = settings.Word(kProgress, Progress::Off);
    const bool shown = progress == Progress::On ||
                       (progress == Progress::Auto && platform::StandardErrorIsTerminal());
    if (shown && !options_.silent) progress_line_.emplace(index_, clock_);
}

// ---- Failures ----

// Writes a failure, with the place where it happened where the job wants that. What was written
// before it arrives first; where it does not, that is told as well.
void DataStep::Report(String& error) {
    String loss;
    if (target_ && at_work_.section == Section::Target) TakeFailedRow();
    if (target_) target_->WriteOut(loss);
    if (progress_line_) progress_line_->Clear();
    if (configuration_.Follows(Rule::PlacedMessages)) {
        error.insert(0, FailurePrefix(configuration_, at_work_));
    }
    failure_ = error.empty() ? loss : error;
    ReportError(error, logger_, {});
    ReportError(loss, logger_, {});
}

// A target that gathers rows may fail for one that came before.
void DataStep::TakeFailedRow() {
    const std::optional<DataConsumers::RowOrigin> row = target_->FailedRow();
    if (!row) return;
    at_work_.row = row->number;
    at_work_.line = row->line;
}

bool DataStep::Fail(String& error) {
    Report(error);
    return false;
}

// Reports a failed preparation. True when the step goes on with what it has; the text is then gone,
// so that it cannot come back as that of a later failure.
bool DataStep::GoOnWithout(String& error) {
    Report(error);
    if (options_.stop_on_error || configuration_.Follows(Rule::FailedStepsCount)) return false;
    error.clear();
    return true;
}

// ---- Preparation ----

bool DataStep::PrepareAll(String& error) {
    return OpenSource(error) && CreateTarget(error) && CreateTransformers(error) &&
           OpenTarget(error);
}

// A source that could not be opened is not used; what else the step has still is.
bool DataStep::OpenSource(String& error) {
    at_work_ = {Section::Source};
    if (source_->Open(error, source_settings_, rows_)) return true;
    source_.reset();
    return GoOnWithout(error);
}

bool DataStep::CreateTarget(String& error) {
    at_work_ = {Section::Target};
    return DataConsumers::DataConsumer::Create(error, target_settings_, target_, logger_, index_) ||
           GoOnWithout(error);
}

bool DataStep::CreateTransformers(String& error) {
    const std::size_t count = configuration_.Step(index_).TransformCount();
    for (std::size_t i = 0; i < count; ++i) {
        at_work_ = {Section::Transform, i};
        configuration_.SetCurrentTransform(i);
        const SectionSettings settings(configuration_, Section::Transform);
        std::unique_ptr<DataTransformers::DataTransformer> transformer;
        if (DataTransformers::DataTransformer::Create(error, settings, transformer) &&
            (!configuration_.Follows(Rule::TransformsFollowSets) ||
             transformer->CheckColumns(error, rows_))) {
            transformers_.push_back(std::move(transformer));
        } else if (!GoOnWithout(error)) {
            return false;
        }
    }
    return true;
}

// The transformers see the columns between the target's Open and its Prepare, which names them.
bool DataStep::OpenTarget(String& error) {
    if (!target_) return true;
    at_work_ = {Section::Target};
    if (source_) target_->KeepClearOf(source_->InputFile(), source_->ReadBytes());
    if (!target_->Open(error, target_settings_)) {
        target_.reset();
        return GoOnWithout(error) && TransformColumns(error);
    }
    if (!TransformColumns(error)) return false;
    at_work_ = {Section::Target};
    return target_->Prepare(error, rows_) || GoOnWithout(error);
}

bool DataStep::TransformColumns(String& error) {
    for (std::size_t i = 0; i < transformers_.size(); ++i) {
        at_work_ = {Section::Transform, i};
        if (!transformers_[i]->Transform(error, rows_) && !GoOnWithout(error)) return false;
    }
    return true;
}

// The columns of a further result set; false, as the step fails then, where it lacks one.
bool DataStep::TransformNextColumns(String& error) {
    if (!configuration_.Follows(Rule::TransformsFollowSets)) return true;
    for (std::size_t i = 0; i < transformers_.size(); ++i) {
        at_work_ = {Section::Transform, i};
        transformers_[i]->BeginResultSet();
        failed_ = !transformers_[i]->CheckColumns(error, rows_) ||
                  !transformers_[i]->Transform(error, rows_);
        if (failed_) return false;
    }
    return true;
}

// ---- Rows ----

// Columns of fixed width line up when the whole source has been read once before.
bool DataStep::MeasureWidths(String& error) {
    if (!source_ || !target_ || !target_->MeasuresWidths()) return true;
    return configuration_.Follows(Rule::WidthsAsWritten) ? MeasureWritten(error)
                                                         : MeasureRead(error);
}

// Measures what the source itself measures, in its first result set, and opens it again. A source
// that describes its columns anew keeps the widths that were measured, and what the transformers
// made of the columns.
bool DataStep::MeasureRead(String& error) {
    if (!source_->CanReopen()) return true;
    String failure;
    while (source_->Fetch(failure, rows_, true)) {
    }
    measuring_failure_ = failure.empty() ? source_->Loss() : failure;
    if (!measuring_failure_.empty() && on_read_error_ == OnReadError::Stop) {
        at_work_ = {Section::Source};
        error = measuring_failure_;
        return Fail(error);
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
    return true;
}

// Measures what the target would write, in every result set, and opens the source again.
bool DataStep::MeasureWritten(String& error) {
    at_work_ = {Section::Source};
    if (!source_->CanReopen() && !(source_->KeepForReopening(error) && ReopenSource(error))) {
        return Fail(error);
    }
    const std::vector<ColumnDefinition> columns = rows_.Columns;
    for (bool more = true; more; more = source_->HasMoreData(error, rows_)) {
        const bool is_first = set_widths_.empty();
        if (!(is_first || TransformNextColumns(error)) || !MeasureResultSet(error)) {
            return Fail(error);
        }
        std::vector<std::uint64_t>& widths = set_widths_.emplace_back();
        for (const ColumnDefinition& column : rows_.Columns) widths.push_back(column.MaxWidth);
    }
    EndReading(error);
    if (failed_ || !ReopenSource(error)) return Fail(error);
    rows_read_ = 0;
    rows_.Columns = columns;  // as the transformers have made them
    TakeWidths();
    return true;
}

bool DataStep::MeasureResultSet(String& error) {
    target_->MeasureNames(rows_);
    while (FetchRow(error)) {
        if (!TransformRow(error)) return false;
        if (!rows_.SkipRow) target_->MeasureRow(rows_);
    }
    return !failed_;
}

bool DataStep::ReopenSource(String& error) {
    at_work_ = {Section::Source};
    source_->Close();
    rows_.ClearRow();
    error.clear();
    return source_->Open(error, source_settings_, rows_);
}

// Gives the columns of the result set that begins the widths that were measured for it.
void DataStep::TakeWidths() {
    if (next_set_ >= set_widths_.size()) return;
    const std::vector<std::uint64_t>& widths = set_widths_[next_set_++];
    const std::size_t count = std::min(widths.size(), rows_.Columns.size());
    for (std::size_t i = 0; i < count; ++i) rows_.Columns[i].MaxWidth = widths[i];
}

bool DataStep::MoveRows(String& error) {
    const ScopedState state(u"Main loop");
    const platform::PauseListener pauses([this] {
        String told_by_next_write;
        if (target_) target_->WriteOut(told_by_next_write);
    });
    do {
        while (FetchRow(error)) {
            if (!MoveRow(error)) return Fail(error);
        }
    } while (!failed_ && NextResultSet(error));
    return !failed_ || Fail(error);
}

// Reads the next row; false at the end of a result set, or of all where failed_ says so.
bool DataStep::FetchRow(String& error) {
    error.clear();  // what an earlier call said is no part of this one
    if (!source_) return false;
    if (source_->Fetch(error, rows_, false)) {
        rows_.Number = ++rows_read_;
        rows_.Line = source_->Line();
        return true;
    }
    at_work_ = {Section::Source, 0, rows_read_ + 1, source_->Line()};
    return EndReading(error);
}

// What a source says that has no further row. Reading that fails fails the step, or ends its rows
// as if they were all; someone must be able to find out, so then a notice tells of it unless
// `error` is told anyway. Always false.
bool DataStep::EndReading(String& error) {
    if (error.empty() && source_->Loss().empty()) return false;
    const bool lost = !source_->Loss().empty();
    failed_ = lost && (on_read_error_ == OnReadError::Stop || source_->LossFailsStep());
    if (!lost) return false;
    if (failed_) {
        if (error.empty()) error = source_->Loss();
    } else if (error.empty()) {
        TellNotice(Format(u"Warning: reading from the database failed: %s\n", source_->Loss()));
    }
    return false;
}

bool DataStep::MoveRow(String& error) {
    if (!TransformRow(error)) return false;
    if (rows_.SkipRow) {
        ++left_out_;
        return true;
    }
    error.clear();
    if (target_ && !target_->Write(error, rows_)) {
        at_work_ = {Section::Target, 0, rows_read_, source_->Line()};
        return false;
    }
    ++items_;
    ShowProgress();
    return true;
}

bool DataStep::TransformRow(String& error) {
    rows_.SkipRow = false;
    for (std::size_t i = 0; i < transformers_.size(); ++i) {
        if (!transformers_[i]->Transform(error, rows_)) {
            at_work_ = {Section::Transform, i, rows_read_, source_->Line()};
            return false;
        }
        if (rows_.SkipRow) break;
    }
    return true;
}

// Moves on to the source's next result set; false at the end, and where moving on has failed.
// Reading that ended in a failure is told of here.
bool DataStep::NextResultSet(String& error) {
    String reading = std::move(error);  // what ended the last result set
    error.clear();
    const bool more = source_ && source_->HasMoreData(error, rows_);
    at_work_ = {Section::Source};
    if (source_ && !more) EndReading(error);
    if (failed_ || (more && !TransformNextColumns(error))) return false;
    if (more) TakeWidths();
    if (more && target_) {
        ReportError(reading, logger_, {});
        return BeginNextResultSet(error);
    }
    // The second reading may not have met what the measuring one did; then nobody else tells.
    for (const String& text : {error, reading, more ? String() : measuring_failure_}) {
        if (text.empty()) continue;
        ReportError(error, logger_, u"HasMoreData: " + text);
        break;
    }
    error.clear();
    return more;
}

// Lets the target go on. One that cannot says so when it is written to, or fails the step at once.
bool DataStep::BeginNextResultSet(String& error) {
    const bool fails = configuration_.Follows(Rule::NextSetMustBegin);
    at_work_ = {Section::Target};
    const bool wants_columns = target_->NextResultSet(error, target_settings_);
    const bool begun = wants_columns ? target_->Prepare(error, rows_) : error.empty();
    if (begun) return true;
    if (fails) {
        failed_ = true;
        return false;
    }
    ReportError(error, logger_, {});
    error.clear();
    return true;
}

bool DataStep::CloseAll(String& error) {
    if (progress_line_) progress_line_->Clear();
    at_work_ = {Section::Target};
    if (target_ && !target_->Close(error)) return Fail(error);
    if (source_) source_->Close();
    return !target_ || target_->Commit(error) || Fail(error);
}

// ---- Telling ----

void DataStep::Describe(StepReport& report) const {
    report.error = failure_;
    const std::uint64_t refused = target_ ? target_->Rejected() : 0;
    const std::uint64_t skipped = target_ ? target_->Skipped() : 0;
    report.rows_written = items_ - std::min(items_, refused + skipped);
    report.rows_skipped = left_out_ + skipped + (source_ ? source_->Skipped() : 0);
    report.rows_rejected = refused + (source_ ? source_->Rejected() : 0);
    report.rows_read = report.rows_written + report.rows_skipped + report.rows_rejected;
    if (!target_) return;
    report.bytes_written = target_->WritesBytes() ? target_->WrittenSize() : 0;
    report.files = target_->Files();
}

void DataStep::ShowProgress() {
    if (dot_interval_ != 0 && !options_.silent && items_ % dot_interval_ == 0) console_.Show(u".");
    if (!progress_line_ || !progress_line_->IsDue(items_)) return;
    const bool in_bytes = target_ && target_->WritesBytes();
    progress_line_->Tell(items_, in_bytes ? target_->WrittenSize() : 0, source_->ReadShare());
}

// What the numbers of items and bytes do not show. Nothing is written where there is nothing to it.
void DataStep::WriteLosses() const {
    const auto tell = [&](std::uint64_t count, StringView what) {
        String ignored;
        if (count != 0) logger_.Write(ignored, Format(u"%I64u %s.", count, what), 0);
    };
    const bool told = configuration_.Follows(Rule::LossesAreCounted);
    if (!told) return;
    tell((source_ ? source_->Skipped() : 0) + (target_ ? target_->Skipped() : 0),
         u"records skipped");
    tell((source_ ? source_->Rejected() : 0) + (target_ ? target_->Rejected() : 0),
         u"rows rejected");
    tell((source_ ? source_->ReplacedCharacters() : 0) +
             (target_ ? target_->ReplacedCharacters() : 0),
         u"characters replaced");
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
    WriteLosses();
    const std::uint64_t written = target_ ? target_->WrittenSize() : 0;
    constexpr double kShortestMeasured = 0.025;  // seconds; anything less says nothing of speed
    if (written == 0 || total <= kShortestMeasured) return;
    const double megabytes = static_cast<double>(written) * (1.0 / 1024) * (1.0 / 1024);
    logger_.Write(
        ignored, Format(u"%I64u Kbytes written or %5.2f Mb/sec.", written >> 10, megabytes / total),
        0);
}
