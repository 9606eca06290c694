#pragma once

#include <string>

#include "consumers/document_form.h"

namespace DataConsumers {

// The rows as one worksheet of a workbook in SpreadsheetML, the "XML Spreadsheet 2003" format,
// always in UTF-8 and in an emptied file. The column names stand in bold in the first row, which
// comes with the first row of data:
//
//      <Row>
//        <Cell ss:StyleID="bld"><Data ss:Type="String">Price</Data></Cell>
//      </Row>
//      <Row>
//        <Cell><Data ss:Type="Number">12.5</Data></Cell>
//      </Row>
class PlainSheet final : public DocumentForm {
public:
    PlainSheet() : DocumentForm({}) {}

    void BeginFile(String& out) override;
    // Begins the workbook.
    bool BeginTable(String& error, const RowSet& rows, String& out) override;
    bool AppendRow(String& error, const RowSet& rows, String& out) override;
    bool EndFile(String& error, String& out) override;

private:
    void AppendHeaderRow(const RowSet& rows, String& out);
    void AppendCell(bool bold, const ColumnDefinition* column, StringView text, String& out);
    bool IsNumber(const ColumnDefinition* column, StringView text);

    bool header_row_pending_ = false;
    std::string number_;  // room for reading a number; reused
};

}  // namespace DataConsumers
