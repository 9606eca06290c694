#pragma once

#include "consumers/statement_form.h"
#include "storages/create_table.h"

namespace sql {

// Statements in a dialect: names are quoted, literals follow the kinds of the columns, types the
// type codes. No value, name or default can become anything else.
class DialectStatements final : public StatementForm {
public:
    explicit DialectStatements(const SqlDialect& dialect) : dialect_(dialect) {}

    void Prepare(const TableSetting& table, const RowSet& rows, bool column_list) override;
    void AppendInsert(String& statement) const override { statement += insert_; }
    bool AppendValues(String& error, String& statement, const RowSet& rows) const override;
    bool AddColumn(String& error, const TableSetting& table, const RowSet& rows) override;
    void AppendTable(String& statement) override;
    bool HasColumns() const override { return !columns_.empty(); }
    bool EndsEmptyTables() const override { return false; }
    bool AppendNestedTable(String& error, String& statement, const TableSetting& table,
                           const RowSet& rows) override;

private:
    const SqlDialect& dialect_;
    String insert_;                  // what begins an insert statement
    std::vector<ColumnKind> kinds_;  // of the columns that are inserted into
    TableName table_;                // that is to be made
    std::vector<TableColumn> columns_;
};

}  // namespace sql
