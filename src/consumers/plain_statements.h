#pragma once

#include "consumers/statement_form.h"

namespace sql {

// Statements with the literal marks that the source tells for its columns, and with the types and
// names of columns as they come; see sql_statement.h.
class PlainStatements final : public StatementForm {
public:
    void Prepare(const TableSetting& table, const RowSet& rows, bool column_list) override;
    void AppendInsert(String& statement) const override { statement += insert_; }
    bool AppendValues(String& error, String& statement, const RowSet& rows) const override;
    bool AddColumn(String& error, const TableSetting& table, const RowSet& rows) override;
    void AppendTable(String& statement) override;
    bool HasColumns() const override { return !table_.empty(); }
    bool EndsEmptyTables() const override { return true; }
    bool AppendNestedTable(String& error, String& statement, const TableSetting& table,
                           const RowSet& rows) override;

private:
    String insert_;  // what begins an insert statement
    String name_;    // of the table, as written
    String table_;   // the statement that makes it
};

}  // namespace sql
