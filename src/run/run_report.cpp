#include "run/run_report.h"

#include "core/type_table.h"
#include "files/format.h"
#include "files/json_text.h"
#include "files/text_writer.h"
#include "run/banner.h"
#include "run/step_place.h"
#include "system/system_step.h"

namespace {

// A JSON document under construction, indented by two blanks a level.
class Document {
public:
    explicit Document(const SecretMask& mask) : mask_(mask) {}

    void Open(char16_t bracket) {
        text_ += bracket;
        ++depth_;
        first_ = true;
    }
    void Close(char16_t bracket) {
        --depth_;
        if (!first_) BreakLine();
        text_ += bracket;
        first_ = false;
    }
    // Begins an element of an array.
    void Next() {
        if (!first_) text_ += u',';
        first_ = false;
        BreakLine();
    }
    void Name(StringView name) {
        Next();
        AppendJsonString(text_, name);
        text_ += u": ";
    }
    void Value(StringView text) { AppendJsonString(text_, mask_.Masked(text)); }
    void Null() { text_ += u"null"; }
    void Text(StringView name, StringView value) {
        Name(name);
        Value(value);
    }
    void TextOrNull(StringView name, const String& value) {
        Name(name);
        value.empty() ? Null() : Value(value);
    }
    void Number(StringView name, std::uint64_t value) {
        Name(name);
        text_ += Format(u"%I64u", value);
    }
    void Seconds(StringView name, double value) {
        Name(name);
        text_ += Format(u"%.3f", value);
    }
    const String& Finished() { return text_ += u'\n'; }

private:
    void BreakLine() { text_.append(1, u'\n').append(2 * depth_, u' '); }

    const SecretMask& mask_;
    String text_;
    std::size_t depth_ = 0;
    bool first_ = true;
};

// RFC 3339.
String Timestamp(const platform::LocalTime& utc) {
    return Format(u"%04d-%02d-%02dT%02d:%02d:%02dZ", utc.year, utc.month, utc.day, utc.hour,
                  utc.minute, utc.second);
}

void WriteEnd(Document& document, StringView name, const std::optional<StepReport::End>& end) {
    document.Name(name);
    if (!end) {
        document.Null();
        return;
    }
    document.Open(u'{');
    document.Text(u"type", end->type);
    document.Text(u"name", end->name);
    document.Close(u'}');
}

void WriteFiles(Document& document, const StepReport& step) {
    document.Name(u"files");
    document.Open(u'[');
    for (const DataConsumers::WrittenFile& file : step.files) {
        document.Next();
        document.Open(u'{');
        document.Text(u"name", file.name);
        document.Number(u"bytes", file.bytes);
        document.Close(u'}');
    }
    document.Close(u']');
}

void WriteStep(Document& document, const StepReport& step) {
    static constexpr StringView kStatuses[] = {u"not run", u"done", u"failed"};
    document.Next();
    document.Open(u'{');
    document.Number(u"number", step.number);
    document.Number(u"line", step.line);
    WriteEnd(document, u"source", step.source);
    WriteEnd(document, u"target", step.target);
    document.TextOrNull(u"command", step.command.value_or(String()));
    WriteFiles(document, step);
    document.Number(u"rows_read", step.rows_read);
    document.Number(u"rows_written", step.rows_written);
    document.Number(u"rows_skipped", step.rows_skipped);
    document.Number(u"rows_rejected", step.rows_rejected);
    document.Number(u"bytes_written", step.bytes_written);
    document.Seconds(u"seconds", step.seconds);
    document.Text(u"status", kStatuses[static_cast<std::size_t>(step.status)]);
    document.TextOrNull(u"error", step.error);
    document.Name(u"warnings");
    document.Open(u'[');
    for (const String& warning : step.warnings) {
        document.Next();
        document.Value(warning);
    }
    document.Close(u']');
    document.Close(u'}');
}

std::optional<StepReport::End> EndOf(Configuration& configuration, Section section) {
    const String word = configuration.Text(section, kType);
    if (word.empty()) return std::nullopt;
    return StepReport::End{word, NameOfSection(configuration, section)};
}

}  // namespace

void RunReport::Begin(const String& job, const platform::LocalTime& utc) {
    job_ = job;
    started_ = utc;
}

void RunReport::Describe(Configuration& configuration) {
    edition_ = configuration.Edition();
    steps_.clear();
    for (std::size_t i = 0; i < configuration.StepCount(); ++i) {
        configuration.SetCurrentStep(i);
        StepReport& step = steps_.emplace_back();
        step.number = i + 1;
        step.line = configuration.Step(i).Head().line;
        if (!configuration.Step(i).List(Section::System).Empty()) {
            step.command = configuration.Text(Section::System, kCommand);
            continue;
        }
        step.source = EndOf(configuration, Section::Source);
        step.target = EndOf(configuration, Section::Target);
    }
}

bool RunReport::Write(String& failure, const String& path, const SecretMask& mask, int status,
                      const String& error, const platform::LocalTime& utc) const {
    Document document(mask);
    document.Open(u'{');
    document.Text(u"program", u"quillon");
    document.Text(u"version", VersionNumber());
    document.Text(u"job", job_);
    document.Number(u"edition", static_cast<std::uint64_t>(edition_));
    document.Text(u"started", Timestamp(started_));
    document.Text(u"ended", Timestamp(utc));
    document.Number(u"status", static_cast<std::uint64_t>(status));
    document.TextOrNull(u"error", error);
    document.Name(u"steps");
    document.Open(u'[');
    for (const StepReport& step : steps_) WriteStep(document, step);
    document.Close(u']');
    document.Close(u'}');
    ErrorRecord reason;
    TextWriter file;
    const TextForm form{.encoding = {Encoding::Utf8}, .marked = false};
    const bool written = file.Open(reason, path, form, false) &&
                         file.Write(reason, document.Finished()) && file.Finish(reason);
    if (!written) failure = reason.text;
    return written;
}
