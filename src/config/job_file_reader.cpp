#include "config/job_file_reader.h"

#include "base/activity_trail.h"
#include "files/format.h"
#include "files/line_splitter.h"
#include "files/text.h"
#include "files/text_loader.h"
#include "platform/console.h"
#include "platform/environment.h"
#include "platform/file_system.h"

namespace {

constexpr StringView kInclude = u"@include";
constexpr StringView kStepHead = u"Step";
constexpr std::size_t kShortestStepHead = 6;

struct SectionKeyword {
    StringView word;
    Section section;
};

constexpr SectionKeyword kSectionKeywords[] = {
    {u"Source", Section::Source},     {u"Target", Section::Target},
    {u"Settings", Section::Settings}, {u"Transform", Section::Transform},
    {u"System", Section::System},
};

// Loads the lines of a job file. Lines that are not loaded must not be lost in silence, so standard
// error tells of them.
bool LoadLines(ErrorRecord& error, const String& path, std::vector<String>& lines) {
    LoadReport report;
    if (!LoadTextLines(error, path, lines, &report)) return false;
    if (report.encoding == Encoding::Utf8 && !lines.empty()) {
        DecodeAfterByteOrderMark(lines.front());
    }
    if (report.lines_left_out != 0) {
        platform::WriteErrorText(
            Format(u"Warning: '%s' was read up to line %u. %u lines after it were left out.\n",
                   path, report.last_line, report.lines_left_out));
    }
    return true;
}

// `line` up to its comment, if it has one: the first "#" or ";" outside quotes.
StringView CutComment(StringView line) {
    bool single_quoted = false;
    bool double_quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char16_t unit = line[i];
        if (unit == u'\'' && !double_quoted) single_quoted = !single_quoted;
        if (unit == u'"' && !single_quoted) double_quoted = !double_quoted;
        const bool quoted = single_quoted || double_quoted;
        if (!quoted && (unit == u'#' || unit == u';')) return line.substr(0, i);
    }
    return line;
}

bool IsComment(StringView line) { return line.front() == u';' || line.front() == u'#'; }

}  // namespace

bool Configuration::Read(String& error, const String& path) {
    const ScopedState state(u"Configuration::Read");
    return JobFileReader(*this).Read(error, path);
}

bool JobFileReader::Read(String& error, const String& path) {
    std::vector<String> lines;
    ErrorRecord load_error;
    if (!LoadLines(load_error, path, lines)) {
        error = Format(u"Error loading configuration file: %s", load_error.text);
        return false;
    }
    if (!ExpandIncludes(error, lines)) return false;
    for (const String& line : lines) {
        ++line_number_;
        if (!ParseLine(error, text::Trim(line, text::kBlanksAndLineEnds))) return false;
    }
    EndStep();
    return true;
}

// Puts the lines of included files in place of the lines that name them. An included file is not
// searched for further includes; one that cannot be loaded is dropped.
bool JobFileReader::ExpandIncludes(String& error, std::vector<String>& lines) const {
    std::vector<String> expanded;
    for (String& line : lines) {
        if (!line.starts_with(kInclude)) {
            expanded.push_back(std::move(line));
            continue;
        }
        StringView rest = line;
        rest.remove_prefix(kInclude.size());
        const String name(text::StripQuotes(rest.substr(rest.empty() ? 0 : 1)));
        if (!platform::PathExists(name)) {
            error = Format(u"@include statement. '%s' file is not accessible.\n", name);
            return false;
        }
        std::vector<String> included;
        ErrorRecord ignored;
        if (LoadLines(ignored, name, included)) {
            expanded.insert(expanded.end(), included.begin(), included.end());
        }
    }
    lines = std::move(expanded);
    return true;
}

// line: trimmed.
bool JobFileReader::ParseLine(String& error, StringView line) {
    if (line.empty() || IsComment(line)) return true;
    // "Step #1" is a step head: its length counts before the comment is cut.
    const bool long_enough = line.size() >= kShortestStepHead;
    const bool begins_with_step = line.starts_with(kStepHead);
    line = text::Trim(CutComment(line), text::kBlanksAndLineEnds);
    switch (state_) {
        case State::Start:
            return ParseStart(error, line, long_enough && begins_with_step);
        case State::AfterStepHead:
            return ParseAfterStepHead(error, line);
        case State::InStep:
        case State::InGlobals:
            break;
    }
    if (begins_with_step) {
        BeginStep();
        return true;
    }
    if (EnterSection(line)) return true;
    return ParseItem(error, line);
}

bool JobFileReader::ParseStart(String& error, StringView line, bool is_step_head) {
    if (line == u"Globals") {
        state_ = State::InGlobals;
        return true;
    }
    if (is_step_head) {
        BeginStep();
        return true;
    }
    error = u"Incorrect configuration file. 'Step #' clause expected.";
    return false;
}

bool JobFileReader::ParseAfterStepHead(String& error, StringView line) {
    if (EnterSection(line)) return true;
    error = Format(
        u"Incorrect configuration file item: '%s'. 'Source','Target' or 'Setting' clause "
        u"expected. Line %d.",
        line, line_number_);
    return false;
}

void JobFileReader::BeginStep() {
    EndStep();
    step_ = std::make_unique<ConfigurationStep>();
    state_ = State::AfterStepHead;
}

void JobFileReader::EndStep() {
    if (step_) configuration_.steps_.push_back(std::move(step_));
}

// True when the line is a section keyword; the section becomes the current one. Among Globals a
// keyword changes nothing.
bool JobFileReader::EnterSection(StringView line) {
    for (const SectionKeyword& keyword : kSectionKeywords) {
        if (line != keyword.word) continue;
        if (state_ == State::InGlobals) return true;
        section_ = keyword.section;
        if (section_ == Section::Transform) step_->AddTransform();
        state_ = State::InStep;
        return true;
    }
    return false;
}

bool JobFileReader::ParseItem(String& error, StringView line) {
    const std::size_t equals = line.find(u'=');
    if (equals == StringView::npos) {
        error =
            Format(u"Incorrect configuration file item: '%s'. name=value format expected. Line %d.",
                   line, line_number_);
        return false;
    }
    const StringView name = text::Trim(line.substr(0, equals), text::kBlanks);
    const StringView value = text::Trim(line.substr(equals + 1), text::kBlanks);
    if (state_ == State::InStep) {
        const std::size_t transforms = step_->TransformCount();
        step_->List(section_, transforms == 0 ? 0 : transforms - 1).Set(name, value);
    } else if (name == u"environment") {
        AddEnvironmentMacros(text::StripQuotes(value));
    } else {
        configuration_.globals_.Set(name, value);
    }
    return true;
}

void JobFileReader::AddEnvironmentMacros(StringView names) {
    std::vector<StringView> fields;
    SplitLine(names, u',', {}, OuterQuotes::Keep, fields);
    for (const StringView field : fields) {
        const String name(text::Trim(field, text::kBlanks));
        const String value = platform::EnvironmentVariable(name);
        if (!value.empty()) configuration_.user_macros_.push_back({u"$" + name + u"$", value});
    }
}
