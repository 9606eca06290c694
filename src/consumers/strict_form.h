#pragma once

#include <vector>

#include "consumers/document_form.h"
#include "core/column_type.h"

namespace DataConsumers {

// What the strict forms share: every result set that has columns is a table of its own, with its
// names even where it has no rows.
//
// A table's head is composed with its first row, or at its end where there is none: only then is
// known which columns transformers have removed.
class StrictForm : public DocumentForm {
public:
    void BeginFile(String& out) override;
    bool BeginTable(String& error, const RowSet& rows, String& out) final;
    bool BeginRows(String& error, const RowSet& rows, String& out) final;
    // Fails with "%s: Broken row structure [Values: %d, Structure: %d for '%s']": the type word,
    // the numbers of values and columns and the table.
    bool AppendRow(String& error, const RowSet& rows, String& out) final;
    bool NextTable(String& error, String& out) final;
    bool EndFile(String& error, String& out) final;

protected:
    // A column that is written.
    struct Column {
        std::size_t position;
        String name;
        ColumnKind kind;
    };

    StrictForm(StringView type, const FormRules& rules) : DocumentForm(rules), type_(type) {}

    // What stands before the first table. table: its name, empty for none.
    virtual void AppendFileStart(String& /*out*/) {}
    virtual bool AppendHead(String& error, String& out) = 0;
    virtual bool AppendValues(String& error, const DataRow& row, String& out) = 0;
    virtual void AppendTableEnd(String& /*out*/) {}
    virtual void AppendFileEnd(String& /*out*/) {}

    // Puts the name of the column in front of what is wrong with it. Always false.
    static bool FailAt(String& error, const Column& column);

    // Of the current table.
    const std::vector<Column>& Columns() const { return columns_; }
    // The name of the table that the rows are of; empty where the source tells none.
    const String& TableName() const { return table_name_; }

private:
    enum class Stage { NoTable, HeadMissing, InRows };

    bool EndTable(String& error, String& out);

    const StringView type_;
    Stage stage_ = Stage::NoTable;
    bool file_started_ = false;
    std::vector<Column> columns_;
    String table_name_;
};

}  // namespace DataConsumers
