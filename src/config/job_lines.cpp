#include "config/job_lines.h"

#include <algorithm>

#include "base/notices.h"
#include "files/format.h"
#include "files/strict_text.h"
#include "files/text.h"
#include "files/text_loader.h"
#include "platform/file_system.h"

namespace {

constexpr StringView kInclude = u"@include";

// The name behind "@include" and one character between them.
String IncludedName(StringView line) {
    line.remove_prefix(kInclude.size());
    return String(text::StripQuotes(line.substr(line.empty() ? 0 : 1)));
}

bool CouldNotLoad(String& error, const ErrorRecord& reason) {
    error = Format(u"Error loading configuration file: %s", reason.text);
    return false;
}

bool NotAccessible(String& error, StringView name) {
    error = Format(u"@include statement. '%s' file is not accessible.\n", name);
    return false;
}

// ---- The loose way ----

// Lines that are not loaded must not be lost in silence.
bool LoadLooseFile(ErrorRecord& error, const String& path, const FileOpener& open,
                   std::vector<String>& lines) {
    LoadReport report;
    if (!LoadTextLines(error, path, lines, &report, open)) return false;
    if (report.encoding == Encoding::Utf8 && !lines.empty()) {
        DecodeAfterByteOrderMark(lines.front());
    }
    if (report.lines_left_out != 0) {
        TellNotice(
            Format(u"Warning: '%s' was read up to line %u. %u lines after it were left out.\n",
                   path, report.last_line, report.lines_left_out));
    }
    return true;
}

// An included file is not searched for further includes; one that cannot be loaded is dropped.
bool LoadLoose(String& error, const String& path, const FileOpener& open, JobLines& job) {
    std::vector<String> lines;
    ErrorRecord load_error;
    if (!LoadLooseFile(load_error, path, open, lines)) return CouldNotLoad(error, load_error);
    job.files = {path};
    std::size_t number = 0;
    for (String& line : lines) {
        ++number;
        if (!line.starts_with(kInclude)) {
            job.lines.push_back({std::move(line), {0, number}});
            continue;
        }
        const String name = IncludedName(line);
        if (!platform::PathExists(name)) return NotAccessible(error, name);
        job.files.push_back(name);
        std::vector<String> included;
        ErrorRecord ignored;
        if (!LoadLooseFile(ignored, name, open, included)) continue;
        for (std::size_t i = 0; i < included.size(); ++i) {
            job.lines.push_back({std::move(included[i]), {job.files.size() - 1, i + 1}});
        }
    }
    return true;
}

StringView CutLooseComment(StringView line) {
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

// ---- The strict way ----

constexpr std::size_t kDeepestInclude = 16;

String ChainOf(const std::vector<String>& open, const String& last) {
    String chain;
    for (const String& name : open) chain += Format(u"'%s' -> ", name);
    return chain += Format(u"'%s'", last);
}

class StrictLoader {
public:
    StrictLoader(const FileOpener& open, JobLines& job) : open_file_(open), job_(job) {}

    // Appends the lines of a file. `open_` is the chain of files that are being read.
    bool Load(String& error, const String& path) {
        String content;
        ErrorRecord load_error;
        if (!LoadStrictText(load_error, path, content, open_file_))
            return CouldNotLoad(error, load_error);
        const std::size_t file = job_.files.size();
        job_.files.push_back(path);
        open_.push_back(path);
        std::size_t number = 0;
        for (const StringView line : SplitIntoLines(content)) {
            ++number;
            const bool done = line.starts_with(kInclude)
                                  ? Include(error, IncludedName(line))
                                  : (job_.lines.push_back({String(line), {file, number}}), true);
            if (!done) return Place(error, path, number);
        }
        open_.pop_back();
        return true;
    }

private:
    bool Include(String& error, const String& name) {
        if (!platform::PathExists(name)) {
            error = Format(u"@include statement. '%s' file is not accessible.", name);
            return false;
        }
        if (IsOpen(name)) {
            error = Format(u"@include statement. '%s' includes itself: %s.", name,
                           ChainOf(open_, name));
            return false;
        }
        if (open_.size() > kDeepestInclude) {
            error = Format(u"@include statement. '%s' lies more than %d files deep: %s.", name,
                           kDeepestInclude, ChainOf(open_, name));
            return false;
        }
        return Load(error, name);
    }

    // A file may be named in many ways; the system knows that they are one.
    bool IsOpen(const String& name) const {
        const auto identity = platform::IdentityOf(name);
        return std::any_of(open_.begin(), open_.end(), [&](const String& one) {
            return one == name || (identity && platform::IdentityOf(one) == identity);
        });
    }

    // Puts the innermost place before an error, once.
    bool Place(String& error, const String& path, std::size_t line) {
        if (!placed_) error = Format(u"%s:%u: %s", path, line, error);
        placed_ = true;
        return false;
    }

    const FileOpener& open_file_;
    JobLines& job_;
    std::vector<String> open_;
    bool placed_ = false;
};

bool LoadStrict(String& error, const String& path, const FileOpener& open, JobLines& job) {
    return StrictLoader(open, job).Load(error, path);
}

// ---- The tolerant way ----

// chain: the files that are being read. One that includes itself is not read again: twice in each
// of 16 would be 65,536 times in all.
void LoadTolerantFile(const String& path, const FileOpener& open, std::vector<String>& chain,
                      JobLines& job) {
    if (chain.size() > kDeepestInclude) return;
    if (std::find(chain.begin(), chain.end(), path) != chain.end()) return;
    String content;
    ErrorRecord ignored;
    if (!LoadStrictText(ignored, path, content, open) &&
        !LoadWholeText(ignored, path, content, Encoding::Ansi, open)) {
        return;
    }
    chain.push_back(path);
    for (const StringView line : SplitIntoLines(content)) {
        if (line.starts_with(kInclude)) {
            LoadTolerantFile(IncludedName(line), open, chain, job);
        } else {
            job.lines.push_back({String(line), {}});
        }
    }
    chain.pop_back();
}

bool LoadTolerant(String& /*error*/, const String& path, const FileOpener& open, JobLines& job) {
    std::vector<String> chain;
    LoadTolerantFile(path, open, chain, job);
    return true;
}

bool IsBlank(char16_t unit) { return unit == u' ' || unit == u'\t'; }

// Quotes keep what stands between them, as in the loose way.
StringView CutStrictComment(StringView line) {
    for (std::size_t start = 0; start < line.size();) {
        const std::size_t end = start + CutLooseComment(line.substr(start)).size();
        if (end == line.size()) break;
        if (end == 0 || IsBlank(line[end - 1])) return line.substr(0, end);
        start = end + 1;
    }
    return line;
}

}  // namespace

const JobFileRules kLooseJobFile{LoadLoose, CutLooseComment, false};
const JobFileRules kStrictJobFile{LoadStrict, CutStrictComment, true};
const JobFileRules kTolerantJobFile{LoadTolerant, CutStrictComment, true};
