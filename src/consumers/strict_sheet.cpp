#include "consumers/strict_sheet.h"

#include <algorithm>

#include "base/utf16.h"
#include "consumers/cell_date.h"
#include "files/format.h"
#include "files/number_text.h"
#include "files/text.h"
#include "files/unit_search.h"

namespace DataConsumers {
namespace {

constexpr std::uint64_t kRowsInSheet = 1048576;  // the row of names among them
constexpr std::size_t kCellCharacters = 32767;
constexpr std::size_t kSheetNameCharacters = 31;
constexpr std::size_t kKeptDigits = 15;  // spreadsheets count in doubles

constexpr StringView kStyles =
    u"<?mso-application progid=\"Excel.Sheet\"?>\n"
    u"<Workbook xmlns=\"urn:schemas-microsoft-com:office:spreadsheet\"\n"
    u" xmlns:ss=\"urn:schemas-microsoft-com:office:spreadsheet\">\n"
    u"<Styles>\n"
    u"<Style ss:ID=\"bld\"><Font ss:Bold=\"1\"/></Style>\n"
    u"<Style ss:ID=\"lines\"><Alignment ss:Vertical=\"Top\" ss:WrapText=\"1\"/></Style>\n"
    u"<Style ss:ID=\"date\"><NumberFormat ss:Format=\"yyyy\\-mm\\-dd\"/></Style>\n"
    u"<Style ss:ID=\"time\"><NumberFormat ss:Format=\"yyyy\\-mm\\-dd\\ hh:mm:ss\"/></Style>\n"
    u"</Styles>\n";

enum class Cell { Text, Lines, Name, Number, Date, Timestamp };

// How the cells begin, in the order of Cell.
constexpr StringView kCellStarts[] = {
    u"<Cell><Data ss:Type=\"String\">",
    u"<Cell ss:StyleID=\"lines\"><Data ss:Type=\"String\">",
    u"<Cell ss:StyleID=\"bld\"><Data ss:Type=\"String\">",
    u"<Cell><Data ss:Type=\"Number\">",
    u"<Cell ss:StyleID=\"date\"><Data ss:Type=\"DateTime\">",
    u"<Cell ss:StyleID=\"time\"><Data ss:Type=\"DateTime\">",
};
constexpr StringView kCellEnd = u"</Data></Cell>";
constexpr StringView kRowEnd = u"</Row>\n";

// Whether a spreadsheet keeps all of a number: its digits, and how big or small it is.
bool IsKept(StringView number) {
    constexpr std::size_t kLongest = 200;  // digits; doubles end at 308
    constexpr std::size_t kLongestExponent = 2;
    const std::size_t mantissa = std::min(number.find_first_of(u"eE"), number.size());
    if (mantissa <= kKeptDigits && mantissa == number.size()) return true;  // nearly all
    StringView exponent = number.substr(mantissa);
    if (!exponent.empty()) exponent.remove_prefix(1);
    if (exponent.starts_with(u'+') || exponent.starts_with(u'-')) exponent.remove_prefix(1);
    return SignificantDigits(number) <= kKeptDigits && mantissa <= kLongest &&
           exponent.size() <= kLongestExponent;
}

// Bits are numbers, too: not every reader keeps cells of the type Boolean.
bool IsCounted(ColumnKind kind) { return IsNumber(kind) || kind == ColumnKind::Bit; }

bool IsDateKind(ColumnKind kind) {
    return kind == ColumnKind::Date || kind == ColumnKind::Timestamp;
}

StringView StartOf(Cell cell) { return kCellStarts[static_cast<std::size_t>(cell)]; }

bool HasLines(StringView text) {
    const char16_t* const end = text.data() + text.size();
    return FindUnit(text.data(), end, [](auto unit) { return unit == u'\n'; }) != end;
}

// What kind of cell a value is; that of a number or a date stands in `cell` as it is written.
Cell CellOf(ColumnKind kind, StringView text, String& cell) {
    cell.clear();
    if (IsCounted(kind) && AppendNumber(cell, text) && IsKept(cell)) return Cell::Number;
    if (IsDateKind(kind)) {
        const DateStyle style = MakeCellDate(text, cell);
        if (style == DateStyle::Date) return Cell::Date;
        if (style == DateStyle::Timestamp) return Cell::Timestamp;
    }
    return HasLines(text) ? Cell::Lines : Cell::Text;
}

// The first `count` units, less half a character at the end.
String Cut(String text, std::size_t count) {
    if (text.size() <= count) return text;
    const StringView whole = text;
    std::size_t units = 1;
    if (count > 0 && CharacterAt(whole.substr(count - 1), units) > 0xFFFF) --count;
    text.resize(count);
    return text;
}

// A table's name as that of a sheet.
String SheetNameOf(const String& table) {
    String name = Cut(table, kSheetNameCharacters);
    for (std::size_t i = 0; i < name.size(); ++i) {
        const bool at_end = i == 0 || i + 1 == name.size();
        const bool refused = StringView(u"\\/?*[]:").find(name[i]) != StringView::npos ||
                             name[i] < u' ' || (at_end && name[i] == u'\'');
        if (refused) name[i] = u'_';
    }
    return name;
}

}  // namespace

StrictSheet::StrictSheet(Unmappable unmappable, const Charset& charset)
    : StrictForm(u"ExcelFile", {.goes_on = false}),
      charset_(charset),
      markup_(StrictMarkup::ForXml(unmappable, charset.unicode)) {}

void StrictSheet::AppendFileStart(String& out) {
    sheet_names_.clear();
    out += Format(u"<?xml version=\"1.0\" encoding=\"%s\"?>\n", charset_.name);
    out += kStyles;
}

// A name that no other sheet has, by a number behind it where needed.
String StrictSheet::TakeSheetName() {
    const String base = SheetNameOf(TableName());
    for (std::size_t number = 1;; ++number) {
        String name = Format(u"Sheet%d", number);
        if (!base.empty()) {
            const String tail = number == 1 ? String() : Format(u"_%d", number);
            name = Cut(base, kSheetNameCharacters - tail.size()) + tail;
        }
        if (sheet_names_.insert(text::Lowered(name)).second) return name;
    }
}

bool StrictSheet::AppendHead(String& error, String& out) {
    out += u"<Worksheet ss:Name=\"";
    if (!markup_.Append(error, TakeSheetName(), out)) return false;
    out += u"\">\n<Table>\n";
    AppendWidths(out);
    out += u"<Row>";
    for (const Column& column : Columns()) {
        out += StartOf(Cell::Name);
        if (!AppendText(error, column.name, out)) return FailAt(error, column);
        out += kCellEnd;
    }
    out += kRowEnd;
    rows_in_sheet_ = 1;
    return true;
}

// A timestamp wants more room than cells have by themselves; a text without room is cut when it is
// shown, a date is not shown at all.
void StrictSheet::AppendWidths(String& out) const {
    for (std::size_t i = 0; i < Columns().size(); ++i) {
        if (Columns()[i].kind != ColumnKind::Timestamp) continue;
        out += Format(u"<Column ss:Index=\"%d\" ss:Width=\"120\"/>\n", i + 1);
    }
}

bool StrictSheet::AppendValues(String& error, const DataRow& row, String& out) {
    if (rows_in_sheet_ == kRowsInSheet) {
        AppendTableEnd(out);
        if (!AppendHead(error, out)) return false;
    }
    ++rows_in_sheet_;
    out += u"<Row>";
    for (const Column& column : Columns()) {
        if (!AppendCell(error, column, row[column.position], out)) return FailAt(error, column);
    }
    out += kRowEnd;
    return true;
}

bool StrictSheet::AppendCell(String& error, const Column& column, const DataValue& value,
                             String& out) {
    if (value.IsNull) {
        out += u"<Cell/>";
        return true;
    }
    const Cell cell = CellOf(column.kind, value.Text, cell_);
    out += StartOf(cell);
    if (cell == Cell::Text || cell == Cell::Lines) {
        if (!AppendText(error, value.Text, out)) return false;
    } else {
        out += cell_;
    }
    out += kCellEnd;
    return true;
}

bool StrictSheet::AppendText(String& error, StringView text, String& out) {
    if (text.size() <= kCellCharacters) return markup_.Append(error, text, out);
    error = Format(u"a cell takes %d characters and not %d.", kCellCharacters, text.size());
    return false;
}

void StrictSheet::AppendTableEnd(String& out) { out += u"</Table>\n</Worksheet>\n"; }

// A workbook has a sheet at least.
void StrictSheet::AppendFileEnd(String& out) {
    if (sheet_names_.empty()) out += u"<Worksheet ss:Name=\"Sheet1\">\n<Table/>\n</Worksheet>\n";
    out += u"</Workbook>\n";
}

}  // namespace DataConsumers
