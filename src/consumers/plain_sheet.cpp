#include "consumers/plain_sheet.h"

#include <algorithm>
#include <cstdlib>

#include "consumers/markup.h"
#include "core/sql_types.h"
#include "files/text.h"

namespace DataConsumers {
namespace {

// The three p's are published spelling.
constexpr StringView kWorkbookHead =
    u"<?xml version=\"1.0\" ?><?mso-appplication progid=\"Excel.Sheet\"?>\n"
    u"<Workbook xmlns=\"urn:schemas-microsoft-com:office:spreadsheet\"\n"
    u"  xmlns:x=\"urn:schemas-microsoft-com:office:excel\"\n"
    u" xmlns:ss=\"urn:schemas-microsoft-com:office:spreadsheet\">\n"
    u"<Styles><Style ss:ID=\"bld\"><Font ss:Bold=\"1\" /></Style></Styles> "
    u"<Worksheet ss:Name=\"Page\">\n <Table>\n";
constexpr StringView kWorkbookTail = u" </Table>\n </Worksheet> </Workbook>";
constexpr StringView kRowStart = u" <Row>\n";
constexpr StringView kRowEnd = u" </Row>\n";

// The beginnings of cells: in bold or not, with a text or a number.
constexpr StringView kCellStart[2][2] = {
    {u"   <Cell><Data ss:Type=\"String\">", u"   <Cell><Data ss:Type=\"Number\">"},
    {u"   <Cell ss:StyleID=\"bld\"><Data ss:Type=\"String\">",
     u"   <Cell ss:StyleID=\"bld\"><Data ss:Type=\"Number\">"}};
constexpr StringView kCellEnd = u"</Data></Cell>\n";

bool IsNumeric(std::int32_t data_type) {
    switch (data_type) {
        case kSqlBigInt:
        case kSqlNumeric:
        case kSqlInteger:
        case kSqlSmallInt:
        case kSqlFloat:
        case kSqlReal:
            return true;
        default:
            return false;
    }
}

}  // namespace

void PlainSheet::BeginFile(String& /*out*/) { header_row_pending_ = true; }

bool PlainSheet::BeginTable(String& /*error*/, const RowSet& /*rows*/, String& out) {
    out += kWorkbookHead;
    return true;
}

bool PlainSheet::AppendRow(String& /*error*/, const RowSet& rows, String& out) {
    if (header_row_pending_) AppendHeaderRow(rows, out);
    header_row_pending_ = false;
    out += kRowStart;
    for (std::size_t i = 0; i < rows.Row.size(); ++i) {
        const DataValue& value = rows.Row[i];
        if (!value.Included) continue;
        const ColumnDefinition* column = i < rows.Columns.size() ? &rows.Columns[i] : nullptr;
        AppendCell(false, column, value.IsNull ? StringView(u"NULL") : value.Text, out);
    }
    out += kRowEnd;
    return true;
}

void PlainSheet::AppendHeaderRow(const RowSet& rows, String& out) {
    out += kRowStart;
    const std::size_t count = std::min(rows.Row.size(), rows.Columns.size());
    for (std::size_t i = 0; i < count; ++i) {
        if (rows.Row[i].Included) AppendCell(true, &rows.Columns[i], rows.Columns[i].Name, out);
    }
    out += kRowEnd;
}

void PlainSheet::AppendCell(bool bold, const ColumnDefinition* column, StringView text,
                            String& out) {
    out += kCellStart[bold][IsNumber(column, text)];
    AppendMarkup(out, text);
    out += kCellEnd;
}

// True in a numeric column for a text that begins with a number other than zero.
bool PlainSheet::IsNumber(const ColumnDefinition* column, StringView text) {
    if (column == nullptr || !IsNumeric(column->DataType)) return false;
    if (text::IsPlainNumber(text)) return true;
    number_.clear();
    for (const char16_t unit : text) {
        if (unit >= 128) break;  // belongs to no number
        number_ += static_cast<char>(unit);
    }
    return std::strtod(number_.c_str(), nullptr) != 0;
}

bool PlainSheet::EndFile(String& /*error*/, String& out) {
    out += kWorkbookTail;
    return true;
}

}  // namespace DataConsumers
