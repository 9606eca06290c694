#include "consumers/text_file.h"

#include "base/activity_trail.h"
#include "files/format.h"

namespace DataConsumers {
namespace {

constexpr KeyTable kKeys({
    {.name = u"Header",
     .kind = KeyKind::Flag,
     .edition1 = u"0",
     .edition2 = u"0",
     .meaning = u"write the names of the columns first"},
    {.name = u"Delimiter",
     .edition1 = u"tab",
     .edition2 = u"tab",
     .meaning = u"what stands between two fields"},
    {.name = u"QuotationMode",
     .kind = KeyKind::Word,
     .words = u"Never ByValue Always",
     .edition1 = u"Never",
     .edition2 = u"Never",
     .meaning = u"which fields stand between quotes",
     .any_case = true},
    {.name = u"QuoteChar", .edition1 = u"\"", .edition2 = u"\"", .meaning = u"the quote of fields"},
    {.name = u"EndOfLine",
     .kind = KeyKind::Word,
     .words = u"LF CRLF",
     .edition1 = u"CRLF",
     .edition2 = u"CRLF",
     .meaning = u"what ends a line"},
    {.name = u"NullIsEmptyString",
     .kind = KeyKind::Flag,
     .edition1 = u"0",
     .edition2 = u"0",
     .meaning = u"write NULL as nothing"},
    {.name = u"FixedWidth",
     .kind = KeyKind::Flag,
     .edition1 = u"0",
     .edition2 = u"0",
     .meaning = u"line columns up with blanks; the source is read twice"},
});
constexpr Key kHeader = kKeys[u"Header"];
constexpr Key kDelimiter = kKeys[u"Delimiter"];
constexpr Key kQuotationMode = kKeys[u"QuotationMode"];
constexpr Key kQuoteChar = kKeys[u"QuoteChar"];
constexpr Key kEndOfLine = kKeys[u"EndOfLine"];
constexpr Key kNullIsEmptyString = kKeys[u"NullIsEmptyString"];
constexpr Key kFixedWidth = kKeys[u"FixedWidth"];

String DelimiterOf(const String& setting) {
    return setting == u"tab" || setting == u"<tab>" ? u"\t" : setting;
}

}  // namespace

KeyList TextFile::Keys() { return {kKeys, kOverwriteKeys, kEncodingKeys, FileKeys()}; }

bool TextFile::ReadSettings(String& /*error*/, const SectionSettings& settings) {
    const ScopedState state(u"TextFile::Open");
    quotation_ = settings.Word(kQuotationMode, Quotation::Never);
    end_of_line_ = settings.Word(kEndOfLine, EndOfLine::CrLf) == EndOfLine::Lf ? u"\n" : u"\r\n";
    delimiter_ = DelimiterOf(settings.Text(kDelimiter));
    header_ = settings.Flag(kHeader);
    null_is_empty_ = settings.Flag(kNullIsEmptyString);
    quote_ = settings.Text(kQuoteChar);
    fixed_width_ = settings.Flag(kFixedWidth);
    first_file_ = true;
    header_delayed_ = false;
    return true;
}

// A file that goes on has its header; but each further result set brings one of its own.
bool TextFile::BeginFile(String& /*error*/) {
    header_pending_ = header_ && !(first_file_ && GoesOn());
    first_file_ = false;
    return true;
}

bool TextFile::Prepare(String& error, RowSet& rows) {
    const ScopedState state(u"TextFile::Prepare");
    if (!header_pending_) return true;
    header_pending_ = false;
    ComposeHeader(rows);
    if (!fixed_width_) return WriteText(error, line_);
    header_delayed_ = true;
    delayed_header_ = line_;
    return true;
}

void TextFile::ComposeHeader(const RowSet& rows) {
    line_.clear();
    bool first = true;
    for (const ColumnDefinition& column : rows.Columns) {
        if (!column.Included) continue;
        AppendField(column.Name, column, first);
        first = false;
    }
    line_ += end_of_line_;
}

void TextFile::AppendField(StringView value, const ColumnDefinition& column, bool first) {
    if (fixed_width_) {
        line_ += value;  // whole, even when it is longer than the widest text seen
        if (value.size() < column.MaxWidth) line_.append(column.MaxWidth - value.size(), u' ');
        return;
    }
    if (!first) line_ += delimiter_;
    const bool quoted =
        quotation_ == Quotation::Always ||
        (quotation_ == Quotation::ByValue && value.find(delimiter_) != StringView::npos);
    if (quoted) line_ += quote_;
    line_ += value;
    if (quoted) line_ += quote_;
}

bool TextFile::Write(String& error, RowSet& rows) {
    if (rows.Row.size() != rows.Columns.size()) {
        error = Format(u"TextFile: Broken row structure [Values: %d, Structure: %d for '%s']",
                       rows.Row.size(), rows.Columns.size(), rows.TableName);
        return false;
    }
    if (header_delayed_) {
        header_delayed_ = false;
        ComposeHeader(rows);
        if (!WriteText(error, line_)) return false;
    }
    line_.clear();
    bool first = true;
    for (std::size_t i = 0; i < rows.Row.size(); ++i) {
        const DataValue& value = rows.Row[i];
        if (!value.Included) continue;
        StringView shown = value.Text;
        if (value.IsNull) shown = null_is_empty_ ? u"" : u"NULL";
        AppendField(shown, rows.Columns[i], first);
        first = false;
    }
    line_ += end_of_line_;
    return WriteText(error, line_);
}

// Writes the header that still waits for a row to tell its widths.
bool TextFile::EndFile(String& error) {
    if (!header_delayed_) return true;
    header_delayed_ = false;
    line_ = delayed_header_;
    return WriteText(error, line_);
}

bool TextFile::ContinueFile(String& error) {
    if (!EndFile(error)) return false;
    if (header_) header_pending_ = true;
    return true;
}

}  // namespace DataConsumers
