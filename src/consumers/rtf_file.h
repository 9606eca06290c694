#pragma once

#include "consumers/file_target.h"

namespace DataConsumers {

// Writes the rows as a table of an RTF document (Rich Text Format, version 1.9.1) on A4 paper, in
// UTF-8 with its mark and into an emptied file: a grey row of names, then a bordered row for each
// row. Every cell is 1000 twips wide. Texts are written as they are: backslashes, braces and
// characters beyond ASCII are not escaped.
class RTFFile final : public FileTarget {
public:
    RTFFile() : FileTarget({.overwrite = kLaterOverwrite, .encoding = kLaterEncoding}) {}
    static KeyList Keys();

    // Begins the document with the row of names.
    bool Prepare(String& error, RowSet& rows) override;
    bool Write(String& error, RowSet& rows) override;

private:
    bool EndFile(String& error) override;

    void AppendCell(StringView text);

    String row_definition_;  // of the latest data row; rows mostly have the same number of cells
    std::size_t defined_cells_ = 0;
};

}  // namespace DataConsumers
