#pragma once

#include "consumers/file_target.h"

namespace DataConsumers {

// Writes the rows as an HTML table between a prologue and an epilogue, into an emptied file. Every
// element can have a class. The column names, not escaped, come with the first row of data:
//
//     <table class="table">
//     <tr>
//     <th>
//     Price</th></tr>
//     <tr>
//     <td>
//     12.5</td></tr>
//     </table>
//
// Open fails with "Prologue file '%s' does not exist or inaccessible." and "Epilogue file '%s' dies
// not exist or inaccessible.", or with dFile's message when such a file cannot be read. Without a
// mark these files are read as UTF-8, or byte by byte where they are not that.
class HtmlFile final : public FileTarget {
public:
    HtmlFile() : FileTarget({.overwrite = kLaterOverwrite, .encoding = kNarrowEncoding}) {}
    static KeyList Keys();

    // Writes the prologue and begins the table.
    bool Prepare(String& error, RowSet& rows) override;
    bool Write(String& error, RowSet& rows) override;

private:
    bool ReadSettings(String& error, const SectionSettings& settings) override;
    bool ReadFrame(String& error, const SectionSettings& settings);
    bool BeginFile(String& error) override;
    bool ContinueFile(String& error) override;
    bool EndFile(String& error) override;
    // Writes the empty table that stands between the end of one and the next file.
    bool LeaveFile(String& error) override;

    bool BeginNextTable(String& error);
    void AppendHeaderRow(const RowSet& rows);

    String prologue_;
    String epilogue_;
    String table_tag_;  // the opening tags
    String header_tag_;
    String row_tag_;
    String cell_tag_;
    bool header_row_pending_ = false;
    bool leaves_empty_table_ = true;
};

}  // namespace DataConsumers
