#include "consumers/plain_statements.h"

#include "consumers/sql_statement.h"

namespace sql {

void PlainStatements::Prepare(const TableSetting& table, const RowSet& rows, bool column_list) {
    name_ = table.Text();
    insert_ = InsertPrefix(name_, rows.Columns, column_list);
}

bool PlainStatements::AppendValues(String& error, String& statement, const RowSet& rows) const {
    return AppendValueList(error, statement, rows.Columns, rows.Row);
}

bool PlainStatements::AddColumn(String& error, const TableSetting& table, const RowSet& rows) {
    return AppendColumnLine(error, table_, NameOfDescribed(table.Unresolved(), name_, rows),
                            rows.Row);
}

void PlainStatements::AppendTable(String& statement) {
    statement += table_;
    statement += u')';
    table_.clear();
}

// The rows name it, whatever the setting says.
bool PlainStatements::AppendNestedTable(String& error, String& statement,
                                        const TableSetting& /*table*/, const RowSet& rows) {
    const StringView table = rows.Row.empty() ? StringView() : rows.Row[0].Text;
    const StringView schema = rows.Row.size() < 2 ? StringView() : rows.Row[1].Text;
    for (const RowSet& column : *rows.Nested) {
        if (!AppendColumnLine(error, statement, {schema, table}, column.Row)) return false;
    }
    if (!statement.empty()) statement += u')';
    return true;
}

}  // namespace sql
