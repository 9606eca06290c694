#pragma once

#include <cstdint>
#include <set>

#include "consumers/charset.h"
#include "consumers/strict_form.h"
#include "consumers/strict_markup.h"

namespace DataConsumers {

// The rows as a workbook in SpreadsheetML, the "XML Spreadsheet 2003" format, with a sheet for each
// result set and the names in bold above its rows:
//
//     <Row><Cell ss:StyleID="bld"><Data ss:Type="String">Price</Data></Cell></Row>
//     <Row><Cell><Data ss:Type="Number">12.5</Data></Cell></Row>
//
// Cells follow the types of their columns: numbers that a spreadsheet keeps whole, bits as 0 and 1,
// dates that it counts; everything else is text. NULL is an empty cell. A sheet that is full is
// followed by another one with the same names.
//
// A row fails with "Column '%s': a cell takes 32767 characters and not %d.", and with the failures
// of StrictMarkup.
class StrictSheet final : public StrictForm {
public:
    StrictSheet(Unmappable unmappable, const Charset& charset);

    std::uint64_t Replaced() const override { return markup_.Replaced(); }

private:
    void AppendFileStart(String& out) override;
    bool AppendHead(String& error, String& out) override;
    bool AppendValues(String& error, const DataRow& row, String& out) override;
    void AppendTableEnd(String& out) override;
    void AppendFileEnd(String& out) override;

    void AppendWidths(String& out) const;
    bool AppendCell(String& error, const Column& column, const DataValue& value, String& out);
    bool AppendText(String& error, StringView text, String& out);
    String TakeSheetName();

    const Charset charset_;
    StrictMarkup markup_;
    std::set<String> sheet_names_;  // in lower case: spreadsheets take "A" and "a" for the same
    std::uint64_t rows_in_sheet_ = 0;
    String cell_;  // what stands in one; reused
};

}  // namespace DataConsumers
