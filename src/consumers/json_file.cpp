#include "consumers/json_file.h"

#include <algorithm>
#include <array>

#include "consumers/escaping.h"
#include "files/format.h"

namespace DataConsumers {
namespace {

constexpr char16_t kFirstPlain = 128;

// What each unit below 128 becomes; empty for those that are copied.
constexpr std::array<StringView, kFirstPlain> kEscapes = [] {
    std::array<StringView, kFirstPlain> escapes{};
    escapes[u'\\'] = u"\\\\";
    escapes[u'"'] = u"\\\"";
    escapes[u'\r'] = u"\\r";
    escapes[u'\n'] = u"\\n";
    escapes[u'\t'] = u"\\t";
    escapes[u'/'] = u"\\/";
    return escapes;
}();

// Digits that do not begin with 0, with at most one full stop behind the first.
bool LooksLikeNumber(StringView text) {
    if (text.empty() || text.front() < u'1' || text.front() > u'9') return false;
    const auto is_digit = [](char16_t unit) { return unit >= u'0' && unit <= u'9'; };
    const auto other = std::find_if_not(text.begin(), text.end(), is_digit);
    if (other == text.end()) return true;
    return *other == u'.' && std::all_of(other + 1, text.end(), is_digit);
}

bool IsEscaped(char16_t unit) { return unit < kFirstPlain && !kEscapes[unit].empty(); }

void AppendEscape(String& line, char16_t unit) { line += kEscapes[unit]; }

// Appends a name or a value, between quotes where it needs them.
void AppendText(String& line, StringView text) {
    if (text == u"null" || LooksLikeNumber(text)) {
        line += text;
        return;
    }
    line += u'"';
    AppendEscaped(line, text, IsEscaped, AppendEscape);
    line += u'"';
}

}  // namespace

bool JSONFile::ReadSettings(String& /*error*/, const SectionSettings& settings) {
    encoding_ = settings.Text(u"Encoding") == u"UTF8" ? Encoding::Utf8 : Encoding::Ansi;
    append_ = !settings.Flag(u"Overwrite", false);
    return true;
}

bool JSONFile::BeginFile(String& error) {
    rows_in_file_ = 0;
    return WriteUncounted(error, u"[");
}

bool JSONFile::Prepare(String& /*error*/, RowSet& /*rows*/) { return true; }

bool JSONFile::Write(String& error, RowSet& rows) {
    error.clear();
    if (!FileIsOpen()) return false;
    if (rows.Row.size() != rows.Columns.size()) {
        error = Format(u"JSONFile: Broken row structure [Values: %d, Structure: %d for '%s']",
                       rows.Row.size(), rows.Columns.size(), rows.TableName);
        return false;
    }
    line_ = rows_in_file_++ == 0 ? u" {" : u",\r\n {";
    bool first = true;
    for (std::size_t i = 0; i < rows.Row.size(); ++i) {
        const DataValue& value = rows.Row[i];
        if (!value.Included) continue;
        if (!first) line_ += u',';
        first = false;
        AppendText(line_, rows.Columns[i].Name);
        line_ += u':';
        AppendText(line_, value.IsNull ? StringView(u"null") : value.Text);
    }
    line_ += u" }";
    return WriteText(error, line_);
}

bool JSONFile::EndFile(String& error) { return WriteUncounted(error, u"]"); }

bool JSONFile::LeaveFile(String& /*error*/) {
    CloseFile();
    return true;
}

}  // namespace DataConsumers
