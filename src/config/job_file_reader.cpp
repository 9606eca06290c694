#include "config/job_file_reader.h"

#include "config/job_keys.h"
#include "files/format.h"
#include "files/line_splitter.h"
#include "files/text.h"
#include "platform/environment.h"

namespace {

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

bool IsComment(StringView line) { return line.front() == u';' || line.front() == u'#'; }

}  // namespace

std::optional<Job> JobFileReader::Read(String& error, const String& path) {
    JobLines lines;
    if (!rules_.load(error, path, open_, lines)) return std::nullopt;
    job_.files = std::move(lines.files);
    for (const JobLine& line : lines.lines) {
        place_ = line.place;
        line_number_ = rules_.placed_errors ? place_.line : line_number_ + 1;
        if (ParseLine(error, text::Trim(line.text, text::kBlanksAndLineEnds))) continue;
        if (rules_.placed_errors) {
            error = Format(u"%s:%u: %s", job_.files[place_.file], place_.line, error);
        }
        return std::nullopt;
    }
    EndStep();
    return std::move(job_);
}

ParameterSet JobFileReader::ReadGlobals(const String& path) {
    JobLines lines;
    String ignored;
    if (!rules_.load(ignored, path, open_, lines)) return {};
    for (const JobLine& line : lines.lines) {
        const bool read = ParseLine(ignored, text::Trim(line.text, text::kBlanksAndLineEnds));
        if (!read && state_ == State::Start) break;
        if (state_ == State::AfterStepHead || state_ == State::InStep) break;
    }
    return std::move(job_.globals);
}

// line: trimmed.
bool JobFileReader::ParseLine(String& error, StringView line) {
    if (line.empty() || IsComment(line)) return true;
    // "Step #1" is a step head: its length counts before the comment is cut.
    const bool long_enough = line.size() >= kShortestStepHead;
    const bool begins_with_step = line.starts_with(kStepHead);
    line = text::Trim(rules_.cut_comment(line), text::kBlanksAndLineEnds);
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
    step_->SetHead(place_);
    state_ = State::AfterStepHead;
}

void JobFileReader::EndStep() {
    if (step_) job_.steps.push_back(std::move(step_));
}

// True when the line is a section keyword; the section becomes the current one. Among Globals a
// keyword changes nothing.
bool JobFileReader::EnterSection(StringView line) {
    for (const SectionKeyword& keyword : kSectionKeywords) {
        if (line != keyword.word) continue;
        if (state_ == State::InGlobals) {
            job_.idle_sections.push_back({String(line), {}, place_});
            return true;
        }
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
        SetItem(CurrentSet(), name, value);
    } else if (name == kEnvironment->name) {
        AddEnvironmentMacros(text::StripQuotes(value));
    } else {
        SetItem(job_.globals, name, value);
    }
    return true;
}

// Of the Transform sections the latest is the current one.
ParameterSet& JobFileReader::CurrentSet() {
    const std::size_t transforms = step_->TransformCount();
    return step_->List(section_, transforms == 0 ? 0 : transforms - 1);
}

void JobFileReader::SetItem(ParameterSet& set, StringView name, StringView value) {
    if (const ParameterSet::Element* first = set.Find(name)) {
        job_.repetitions.push_back({String(name), first->place, place_});
    }
    set.Set(name, value, place_);
}

void JobFileReader::AddEnvironmentMacros(StringView names) {
    std::vector<StringView> fields;
    SplitLine(names, u',', {}, OuterQuotes::Keep, fields);
    for (const StringView field : fields) {
        const String name(text::Trim(field, text::kBlanks));
        const String value = platform::EnvironmentVariable(name);
        if (!value.empty()) job_.environment_macros.push_back({u"$" + name + u"$", value, place_});
    }
}
