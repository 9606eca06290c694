#include "providers/text_file.h"

#include <algorithm>

#include "core/sql_types.h"
#include "files/format.h"
#include "files/text.h"
#include "platform/file_system.h"

namespace DataProviders {
namespace {

constexpr KeyTable kKeys({
    {.name = u"Name",
     .meaning = u"the file; CONSOLE is standard input",
     .macros = Macros::ByEdition,
     .names = Names::FileRead,
     .needed = u"name"},
    {.name = u"Header",
     .kind = KeyKind::Flag,
     .edition1 = u"1",
     .edition2 = u"1",
     .meaning = u"the first line holds the names of the columns"},
    {.name = u"Delimiter",
     .edition1 = u"tab",
     .edition2 = u"tab",
     .meaning = u"what stands between two fields: one character"},
    {.name = u"Quote",
     .edition1 = u"\"",
     .edition2 = u"\"",
     .meaning = u"the quote of fields; empty for none"},
    {.name = u"DataTypes",
     .meaning = u"the types of the columns, with commas: integer, short, number, float, text"},
    {.name = u"CommentChar", .meaning = u"lines that begin with it are left out"},
    {.name = u"SkipIncompleteLines",
     .kind = KeyKind::Flag,
     .edition1 = u"1",
     .edition2 = u"1",
     .meaning = u"leave out lines with fewer fields than columns"},
});
constexpr Key kName = kKeys[u"Name"];
constexpr Key kHeader = kKeys[u"Header"];
constexpr Key kDelimiter = kKeys[u"Delimiter"];
constexpr Key kQuote = kKeys[u"Quote"];
constexpr Key kDataTypes = kKeys[u"DataTypes"];
constexpr Key kCommentChar = kKeys[u"CommentChar"];
constexpr Key kSkipIncompleteLines = kKeys[u"SkipIncompleteLines"];

struct ColumnType {
    StringView word;
    StringView type_name;
    std::int32_t data_type;
    StringView literal_mark;  // prefix and suffix
};

constexpr ColumnType kColumnTypes[] = {
    {u"integer", u"integer", kSqlInteger, u""},
    {u"short", u"integer", kSqlInteger, u""},
    {u"number", u"number", kSqlFloat, u""},
    {u"float", u"number", kSqlFloat, u""},
};
constexpr ColumnType kTextColumn = {u"", u"varchar", kSqlWVarchar, u"'"};

const ColumnType& TypeOf(StringView word) {
    for (const ColumnType& type : kColumnTypes) {
        if (type.word == word) return type;
    }
    return kTextColumn;
}

char16_t DelimiterOf(StringView setting) {
    const bool tab = setting.empty() || setting == u"tab" || setting == u"<tab>";
    return tab ? u'\t' : setting.front();
}

}  // namespace

KeyList TextFile::Keys() { return {kKeys}; }

bool TextFile::Open(String& error, const SectionSettings& settings, RowSet& rows) {
    if (!OpenInput(error, settings)) return false;
    ReadLayout(settings);
    line_pending_ = false;
    line_number_ = 0;
    if (header_) {
        if (!ReadLine(error)) return false;
        Split(OuterQuotes::Keep);
    }
    if (!rows.Columns.empty()) return true;  // opened again: the columns stay
    if (!header_) {
        // The columns are counted on the first line of data, which is delivered all the same.
        line_pending_ = ReadDataLine(error);
        if (!line_pending_) return error.empty();
        Split(OuterQuotes::Strip);
    }
    DescribeColumns(rows);
    return true;
}

bool TextFile::OpenInput(String& error, const SectionSettings& settings) {
    String name = settings.Text(kName);
    if (name.empty()) {
        error = u"'Name' parameter not specified.";
        return false;
    }
    const bool console = text::EqualsIgnoringCase(name, u"CONSOLE");
    if (!console && !platform::PathExists(name)) {  // looked for before macros are replaced
        error = Format(u"File '%s' does not exist or inaccessible.", name);
        return false;
    }
    settings.ResolveUserMacros(kName, name);
    file_.SetConsoleInput(console);
    input_file_ = console ? String() : name;
    ErrorRecord open_error;
    if (file_.OpenForReading(open_error, name)) return true;
    error = open_error.text;
    return false;
}

void TextFile::ReadLayout(const SectionSettings& settings) {
    const String words = settings.Text(kDataTypes);
    std::vector<StringView> fields;
    if (!words.empty()) SplitLine(words, u',', {}, OuterQuotes::Strip, fields);
    type_words_.assign(fields.begin(), fields.end());
    const String comment = settings.Text(kCommentChar);
    has_comments_ = !comment.empty();
    if (has_comments_) comment_ = comment.front();
    skip_incomplete_lines_ = settings.Flag(kSkipIncompleteLines);
    quote_ = settings.Text(kQuote);
    header_ = settings.Flag(kHeader);
    delimiter_ = DelimiterOf(settings.Text(kDelimiter));
}

void TextFile::DescribeColumns(RowSet& rows) const {
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        const ColumnType& type = i < type_words_.size() ? TypeOf(type_words_[i]) : kTextColumn;
        ColumnDefinition column(header_ ? String(fields_[i]) : Format(u"Column%d", i + 1),
                                type.data_type, String(type.type_name), 0);
        column.LiteralPrefix = column.LiteralSuffix = type.literal_mark;
        rows.Columns.push_back(std::move(column));
    }
}

bool TextFile::ReadLine(String& error) {
    ++line_number_;
    if (file_.ReadLine(line_)) return true;
    if (file_.ReadFailed()) loss_ = error = u"Could not read the file to its end.";
    return false;
}

// The next line that is no comment.
bool TextFile::ReadDataLine(String& error) {
    do {
        if (!ReadLine(error)) return false;
    } while (has_comments_ && line_.starts_with(comment_));
    return true;
}

bool TextFile::Fetch(String& error, RowSet& rows, bool /*track_widths*/) {
    do {
        if (!line_pending_ && !ReadDataLine(error)) return false;
        line_pending_ = false;
        Split(OuterQuotes::Strip);
    } while (skip_incomplete_lines_ && fields_.size() < rows.Columns.size());
    if (rows.Row.empty()) rows.GrowRow(fields_.size());
    const std::size_t count = std::min(fields_.size(), rows.Row.size());
    for (std::size_t i = 0; i < count; ++i) {
        DataValue& value = rows.Row[i];
        value.Text.assign(fields_[i]);
        const bool text_column =
            i >= rows.Columns.size() || rows.Columns[i].DataType == kSqlWVarchar;
        value.IsNull = fields_[i].empty() && !text_column;
    }
    return true;
}

bool TextFile::Close() { return file_.Close(); }

}  // namespace DataProviders
