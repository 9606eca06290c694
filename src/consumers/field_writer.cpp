#include "consumers/field_writer.h"

#include <algorithm>
#include <utility>

#include "files/format.h"
#include "files/unit_search.h"

namespace DataConsumers {
namespace {

using Form = LineLayout::Form;
using Quotation = LineLayout::Quotation;

constexpr char16_t kByteOrderMark = u'\xFEFF';

bool IsBlank(char16_t unit) { return unit == u' ' || unit == u'\t'; }

// ---- How a field is written: one class for each way, all of one shape ----

// Quotes stand around every field, or around none; what they enclose is not looked at.
template <Quotation kQuotation>
class PlainFields {
public:
    explicit PlainFields(const LineLayout& layout)
        : delimiter_(layout.delimiter), quote_(layout.quote), null_text_(layout.null_text) {}

    void AppendText(StringView text, String& line) const {
        const bool quoted =
            kQuotation == Quotation::Always ||
            (kQuotation == Quotation::ByValue && text.find(delimiter_) != StringView::npos);
        if (quoted) line += quote_;
        line += text;
        if (quoted) line += quote_;
    }
    void AppendNull(String& line) const { AppendText(null_text_, line); }
    void AppendDelimiter(String& line) const { line += delimiter_; }

private:
    const String delimiter_;
    const String quote_;
    const String null_text_;
};

// Any text can be read back, and told from NULL.
template <Quotation kQuotation>
class CsvFields {
public:
    explicit CsvFields(const LineLayout& layout)
        : delimiter_(layout.delimiter.front()),
          quote_(layout.quote.front()),
          null_text_(layout.null_text) {}

    void AppendText(StringView text, String& line) const {
        if (kQuotation == Quotation::Always || NeedsQuotes(text)) {
            AppendQuoted(text, line);
        } else {
            line += text;
        }
    }
    void AppendNull(String& line) const { line += null_text_; }
    void AppendDelimiter(String& line) const { line += delimiter_; }

private:
    bool NeedsQuotes(StringView text) const {
        if (text.size() == null_text_.size() && text == null_text_) return true;
        if (text.empty()) return false;
        if (IsBlank(text.front()) || IsBlank(text.back())) return true;
        if (text.front() == kByteOrderMark) return true;  // it may come to stand first in the file
        const char16_t* const end = text.data() + text.size();
        return FindUnit(text.data(), end, [delimiter = delimiter_, quote = quote_](auto unit) {
                   return (unit == delimiter) | (unit == quote) | (unit == u'\r') | (unit == u'\n');
               }) != end;
    }

    void AppendQuoted(StringView text, String& line) const {
        line += quote_;
        const char16_t* at = text.data();
        const char16_t* const end = at + text.size();
        while (at != end) {
            const char16_t* found = FindUnit(at, end, [this](auto unit) { return unit == quote_; });
            if (found != end) ++found;
            line.append(at, found);
            if (found[-1] == quote_) line += quote_;
            at = found;
        }
        line += quote_;
    }

    const char16_t delimiter_;
    const char16_t quote_;
    const String null_text_;
};

// ---- Lines ----

template <class Fields>
class DelimitedLines final : public FieldWriter {
public:
    explicit DelimitedLines(const LineLayout& layout) : fields_(layout) {}

    bool AppendNames(String& /*error*/, const RowSet& rows, String& line) const override {
        bool first = true;
        for (const ColumnDefinition& column : rows.Columns) {
            if (!column.Included) continue;
            if (!std::exchange(first, false)) fields_.AppendDelimiter(line);
            fields_.AppendText(column.Name, line);
        }
        return true;
    }

    bool AppendValues(String& /*error*/, const RowSet& rows, String& line) const override {
        bool first = true;
        for (const DataValue& value : rows.Row) {
            if (!value.Included) continue;
            if (!std::exchange(first, false)) fields_.AppendDelimiter(line);
            if (value.IsNull) {
                fields_.AppendNull(line);
            } else {
                fields_.AppendText(value.Text, line);
            }
        }
        return true;
    }

    void MeasureValues(RowSet& /*rows*/) const override {}

private:
    const Fields fields_;
};

void AppendPadded(StringView text, std::size_t width, std::uint64_t wanted, String& line) {
    line += text;
    if (width < wanted) line.append(static_cast<std::size_t>(wanted) - width, u' ');
}

// As wide as what was measured. What is wider stands whole all the same.
class MeasuredLines final : public FieldWriter {
public:
    explicit MeasuredLines(const LineLayout& layout)
        : null_text_(layout.null_text), whole_characters_(layout.whole_characters) {}

    bool AppendNames(String& /*error*/, const RowSet& rows, String& line) const override {
        for (const ColumnDefinition& column : rows.Columns) {
            if (column.Included) Append(column.Name, column, line);
        }
        return true;
    }

    bool AppendValues(String& /*error*/, const RowSet& rows, String& line) const override {
        for (std::size_t i = 0; i < rows.Row.size(); ++i) {
            if (rows.Row[i].Included) Append(Shown(rows.Row[i]), rows.Columns[i], line);
        }
        return true;
    }

    void MeasureValues(RowSet& rows) const override {
        const std::size_t count = std::min(rows.Row.size(), rows.Columns.size());
        for (std::size_t i = 0; i < count; ++i) {
            rows.Columns[i].RaiseMaxWidth(WidthOf(Shown(rows.Row[i]), whole_characters_));
        }
    }

private:
    StringView Shown(const DataValue& value) const {
        return value.IsNull ? StringView{null_text_} : StringView{value.Text};
    }
    void Append(StringView text, const ColumnDefinition& column, String& line) const {
        AppendPadded(text, WidthOf(text, whole_characters_), column.MaxWidth, line);
    }

    const String null_text_;
    const bool whole_characters_;
};

// As wide as the job says. What is wider would hide where the next column begins.
class WidthLines final : public FieldWriter {
public:
    explicit WidthLines(const LineLayout& layout)
        : widths_(layout.widths), null_text_(layout.null_text) {}

    bool AppendNames(String& error, const RowSet& rows, String& line) const override {
        std::size_t next = 0;
        for (const ColumnDefinition& column : rows.Columns) {
            if (!column.Included) continue;
            if (!Append(error, column.Name, column, u"name", next, line)) return false;
        }
        return CheckCount(error, next);
    }

    bool AppendValues(String& error, const RowSet& rows, String& line) const override {
        std::size_t next = 0;
        for (std::size_t i = 0; i < rows.Row.size(); ++i) {
            const DataValue& value = rows.Row[i];
            if (!value.Included) continue;
            const StringView shown = value.IsNull ? StringView{null_text_} : StringView{value.Text};
            if (!Append(error, shown, rows.Columns[i], u"value", next, line)) return false;
        }
        return CheckCount(error, next);
    }

    void MeasureValues(RowSet& /*rows*/) const override {}

private:
    bool Append(String& error, StringView text, const ColumnDefinition& column, StringView what,
                std::size_t& next, String& line) const {
        const std::size_t position = next++;
        if (position >= widths_.size()) return true;            // the count is checked at the end
        if (text.find_first_of(u"\r\n") != StringView::npos) {  // it would begin another row
            error = Format(u"Column '%s' has a line end in its %s, which Widths cannot hold.",
                           column.Name, what);
            return false;
        }
        const std::size_t width = WidthOf(text, true);
        if (width > widths_[position]) {
            error = Format(u"Column '%s' is %u characters wide; its %s has %u.", column.Name,
                           widths_[position], what, width);
            return false;
        }
        AppendPadded(text, width, widths_[position], line);
        return true;
    }

    bool CheckCount(String& error, std::size_t count) const {
        if (count == widths_.size()) return true;
        error = Format(u"Widths names %u columns where %u are.", widths_.size(), count);
        return false;
    }

    const std::vector<std::size_t> widths_;
    const String null_text_;
};

template <template <Quotation> class Fields>
std::unique_ptr<FieldWriter> MakeDelimited(const LineLayout& layout) {
    switch (layout.quotation) {
        case Quotation::Always:
            return std::make_unique<DelimitedLines<Fields<Quotation::Always>>>(layout);
        case Quotation::ByValue:
            return std::make_unique<DelimitedLines<Fields<Quotation::ByValue>>>(layout);
        case Quotation::Never:
            break;
    }
    return std::make_unique<DelimitedLines<Fields<Quotation::Never>>>(layout);
}

}  // namespace

std::size_t WidthOf(StringView text, bool whole_characters) {
    if (!whole_characters) return text.size();
    std::size_t width = text.size();
    for (std::size_t i = 1; i < text.size(); ++i) {
        const bool pair = (text[i - 1] & 0xFC00) == 0xD800 && (text[i] & 0xFC00) == 0xDC00;
        if (pair) --width;
    }
    return width;
}

std::unique_ptr<FieldWriter> FieldWriter::Make(const LineLayout& layout) {
    switch (layout.form) {
        case Form::Csv:
            return MakeDelimited<CsvFields>(layout);
        case Form::Measured:
            return std::make_unique<MeasuredLines>(layout);
        case Form::Widths:
            return std::make_unique<WidthLines>(layout);
        case Form::Plain:
            break;
    }
    return MakeDelimited<PlainFields>(layout);
}

}  // namespace DataConsumers
