#include "consumers/strict_sheet.h"

#include <algorithm>

#include "base/utf16.h"
#include "consumers/cell_date.h"
#include "consumers/number_text.h"
#include "files/format.h"
#include "files/text.h"

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
constexpr StringView kTextCell = u"<Cell><Data ss:Type=\"String\">";
constexpr StringView kLinesCell = u"<Cell ss:StyleID=\"lines\"><Data ss:Type=\"String\">";
constexpr StringView kNameCell = u"<Cell ss:StyleID=\"bld\"><Data ss:Type=\"String\">";
constexpr StringView kNumberCell = u"<Cell><Data ss:Type=\"Number\">";
constexpr StringView kBitCell = u"<Cell><Data ss:Type=\"Boolean\">";
constexpr StringView kDateCell = u"<Cell ss:StyleID=\"date\"><Data ss:Type=\"DateTime\">";
constexpr StringView kTimestampCell = u"<Cell ss:StyleID=\"time\"><Data ss:Type=\"DateTime\">";
constexpr StringView kCellEnd = u"</Data></Cell>";
constexpr StringView kRowEnd = u"</Row>\n";

// Whether a spreadsheet keeps all of a number: its digits, and how big or small it is.
bool IsKept(StringView number) {
    constexpr std::size_t kLongest = 200;        // digits; doubles end at 308
    constexpr std::size_t kLongestExponent = 4;  // "e+99"
    const std::size_t mantissa = std::min(number.find_first_of(u"eE"), number.size());
    return SignificantDigits(number) <= kKeptDigits && mantissa <= kLongest &&
           number.size() - mantissa <= kLongestExponent;
}

bool IsDateKind(ColumnKind kind) {
    return kind == ColumnKind::Date || kind == ColumnKind::Timestamp;
}

// The first `count` units, less half a character at the end.
String Cut(String text, std::size_t count) {
    if (text.size() <= count) return text;
    std::size_t units = 1;
    if (count > 0 && CharacterAt(StringView(text).substr(count - 1), units) > 0xFFFF) --count;
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
    out += u"\">\n<Table>\n<Row>";
    for (const Column& column : Columns()) {
        out += kNameCell;
        if (!AppendText(error, column.name, out)) return FailAt(error, column);
        out += kCellEnd;
    }
    out += kRowEnd;
    rows_in_sheet_ = 1;
    return true;
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
    const StringView text = value.Text;
    cell_.clear();
    if (IsNumber(column.kind) && AppendNumber(cell_, text) && IsKept(cell_)) {
        out += kNumberCell;
        out += cell_;
    } else if (column.kind == ColumnKind::Bit && (text == u"0" || text == u"1")) {
        out += kBitCell;
        out += text;
    } else if (const DateStyle style =
                   IsDateKind(column.kind) ? MakeCellDate(text, cell_) : DateStyle::None;
               style != DateStyle::None) {
        out += style == DateStyle::Date ? kDateCell : kTimestampCell;
        out += cell_;
    } else {
        const bool lines = text.find(u'\n') != StringView::npos;
        out += lines ? kLinesCell : kTextCell;
        if (!AppendText(error, text, out)) return false;
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
