#pragma once

#include <string>

#include "consumers/file_target.h"

namespace DataConsumers {

// Writes the rows as one worksheet of a workbook in SpreadsheetML, the "XML Spreadsheet 2003"
// format, always in UTF-8 and into an emptied file. The column names stand in bold in the first
// row, which comes with the first row of data:
//
//      <Row>
//        <Cell ss:StyleID="bld"><Data ss:Type="String">Price</Data></Cell>
//      </Row>
//      <Row>
//        <Cell><Data ss:Type="Number">12.5</Data></Cell>
//      </Row>
class ExcelFile final : public FileTarget {
public:
    ExcelFile() : FileTarget({.overwrite = kLaterOverwrite, .encoding = kLaterEncoding}) {}
    static KeyList Keys();

    // Begins the workbook.
    bool Prepare(String& error, RowSet& rows) override;
    bool Write(String& error, RowSet& rows) override;

private:
    bool BeginFile(String& error) override;
    bool EndFile(String& error) override;

    void AppendHeaderRow(const RowSet& rows);
    void AppendCell(bool bold, const ColumnDefinition* column, StringView text);
    bool IsNumber(const ColumnDefinition* column, StringView text);

    bool header_row_pending_ = false;
    std::string number_;  // room for reading a number; reused
};

}  // namespace DataConsumers
