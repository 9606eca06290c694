#pragma once

#include "consumers/document_form.h"
#include "consumers/page_settings.h"

namespace DataConsumers {

// The rows as an HTML table between a prologue and an epilogue, in an emptied file. Every element
// can have a class. The column names, not escaped, come with the first row of data:
//
//     <table class="table">
//     <tr>
//     <th>
//     Price</th></tr>
//     <tr>
//     <td>
//     12.5</td></tr>
//     </table>
class PlainPage final : public DocumentForm {
public:
    // leaves_empty_table: one stands between the end of one and the next file.
    PlainPage(PageFrame frame, const PageClasses& classes, bool leaves_empty_table);

    void BeginFile(String& out) override;
    // Writes the prologue and begins the table.
    bool BeginTable(String& error, const RowSet& rows, String& out) override;
    bool AppendRow(String& error, const RowSet& rows, String& out) override;
    bool NextTable(String& error, String& out) override;
    void LeaveFile(String& out) override;
    bool EndFile(String& error, String& out) override;

private:
    void AppendNextTable(String& out) const;
    void AppendHeaderRow(const RowSet& rows, String& out) const;

    const PageFrame frame_;
    const String table_tag_;  // the opening tags
    const String header_tag_;
    const String row_tag_;
    const String cell_tag_;
    const bool leaves_empty_table_;
    bool header_row_pending_ = false;
};

}  // namespace DataConsumers
