#include "consumers/text_file.h"

#include <optional>

#include "base/activity_trail.h"
#include "config/text_dialect.h"
#include "files/format.h"

namespace DataConsumers {
namespace {

constexpr KeyTable kKeys({
    {.name = u"Header",
     .kind = KeyKind::Flag,
     .edition1 = u"0",
     .edition2 = u"1",
     .meaning = u"write the names of the columns first"},
    {.name = u"QuotationMode",
     .kind = KeyKind::Word,
     .words = u"Never ByValue Always",
     .edition1 = u"Never",
     .edition2 = u"ByValue",
     .meaning = u"which fields stand between quotes; with CSV at least those that need them",
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
constexpr Key kQuotationMode = kKeys[u"QuotationMode"];
constexpr Key kQuoteChar = kKeys[u"QuoteChar"];
constexpr Key kEndOfLine = kKeys[u"EndOfLine"];
constexpr Key kNullIsEmptyString = kKeys[u"NullIsEmptyString"];
constexpr Key kFixedWidth = kKeys[u"FixedWidth"];

}  // namespace

KeyList TextFile::Keys() {
    return {kKeys, kDialectKeys, kOverwriteKeys, kEncodingKeys, FileKeys()};
}

bool TextFile::ReadSettings(String& error, const SectionSettings& settings) {
    const ScopedState state(u"TextFile::Open");
    end_of_line_ = settings.Word(kEndOfLine, EndOfLine::CrLf) == EndOfLine::Lf ? u"\n" : u"\r\n";
    header_ = settings.Flag(kHeader);
    first_file_ = true;
    header_delayed_ = false;
    LineLayout layout;
    if (!ReadLayout(error, settings, layout)) return false;
    measures_ = layout.form == LineLayout::Form::Measured;
    fields_ = FieldWriter::Make(layout);
    return true;
}

bool TextFile::ReadLayout(String& error, const SectionSettings& settings, LineLayout& layout) {
    using Form = LineLayout::Form;
    TextSigns signs;
    std::optional<String> null_text;
    if (!ReadTextSigns(error, settings, kQuoteChar, false, signs)) return false;
    if (!ReadNullText(error, settings, signs, null_text)) return false;
    const bool csv = signs.dialect == Dialect::Csv;
    layout.form = csv ? Form::Csv : Form::Plain;
    if (settings.Flag(kFixedWidth)) layout.form = Form::Measured;
    if (!signs.widths.empty()) layout.form = Form::Widths;
    layout.whole_characters = settings.Follows(Rule::WidthsAsWritten);
    layout.delimiter = signs.delimiter;
    layout.quote = signs.quote;
    layout.widths = signs.widths;
    return ReadNull(error, settings, null_text, layout) &&
           ReadQuotation(error, settings, csv, layout);
}

// null_text: what `NullText` says, or the dialect.
bool TextFile::ReadNull(String& error, const SectionSettings& settings,
                        const std::optional<String>& null_text, LineLayout& layout) {
    const bool named = settings.IsSet(kNullIsEmptyString);
    if (named && settings.IsGiven(kNullText)) {
        error = u"NullText and NullIsEmptyString say the same: only one of them can be set.";
        return false;
    }
    const String by_flag = settings.Flag(kNullIsEmptyString) ? u"" : u"NULL";
    layout.null_text = named ? by_flag : null_text.value_or(by_flag);
    return true;
}

bool TextFile::ReadQuotation(String& error, const SectionSettings& settings, bool csv,
                             LineLayout& layout) {
    using Quotation = LineLayout::Quotation;
    layout.quotation = settings.Word(kQuotationMode, Quotation::Never);
    if (!csv || layout.quotation != Quotation::Never) return true;
    if (settings.IsSet(kQuotationMode)) {
        error = u"QuotationMode=Never cannot stand beside Dialect=CSV.";
        return false;
    }
    layout.quotation = Quotation::ByValue;
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
    if (!ComposeHeader(error, rows)) return false;
    if (!measures_) return WriteText(error, line_);
    header_delayed_ = true;  // in line_
    return true;
}

bool TextFile::ComposeHeader(String& error, const RowSet& rows) {
    line_.clear();
    const bool composed = fields_->AppendNames(error, rows, line_);
    line_ += end_of_line_;
    return composed;
}

void TextFile::MeasureNames(RowSet& rows) const {
    for (ColumnDefinition& column : rows.Columns) {
        column.MaxWidth = header_ ? WidthOf(column.Name, true) : 0;
    }
}

bool TextFile::Write(String& error, RowSet& rows) {
    if (rows.Row.size() != rows.Columns.size()) {
        error = Format(u"TextFile: Broken row structure [Values: %d, Structure: %d for '%s']",
                       rows.Row.size(), rows.Columns.size(), rows.TableName);
        return false;
    }
    if (header_delayed_) {
        header_delayed_ = false;
        if (!ComposeHeader(error, rows) || !WriteText(error, line_)) return false;
    }
    line_.clear();
    if (!fields_->AppendValues(error, rows, line_)) return false;
    line_ += end_of_line_;
    return WriteText(error, line_);
}

// Writes the header that still waits for a row to tell its widths.
bool TextFile::EndFile(String& error) {
    if (!header_delayed_) return true;
    header_delayed_ = false;
    return WriteText(error, line_);
}

bool TextFile::ContinueFile(String& error) {
    if (!EndFile(error)) return false;
    if (header_) header_pending_ = true;
    return true;
}

}  // namespace DataConsumers
