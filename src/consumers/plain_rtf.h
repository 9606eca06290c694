#pragma once

#include "consumers/document_form.h"

namespace DataConsumers {

// The rows as a table of an RTF document (Rich Text Format, version 1.9.1) on A4 paper, in UTF-8
// with its mark and in an emptied file: a grey row of names, then a bordered row for each row.
// Every cell is 1000 twips wide. Texts are written as they are: backslashes, braces and characters
// beyond ASCII are not escaped.
class PlainRtf final : public DocumentForm {
public:
    PlainRtf() : DocumentForm({}) {}

    void BeginFile(String& /*out*/) override {}
    // Begins the document with the row of names.
    bool BeginTable(String& error, const RowSet& rows, String& out) override;
    bool AppendRow(String& error, const RowSet& rows, String& out) override;
    bool EndFile(String& error, String& out) override;

private:
    static void AppendCell(StringView text, String& out);

    String row_definition_;  // of the latest data row; rows mostly have the same number of cells
    std::size_t defined_cells_ = 0;
};

}  // namespace DataConsumers
