#include "consumers/dialect_statements.h"

#include "consumers/described_column.h"
#include "consumers/sql_statement.h"

namespace sql {

void DialectStatements::Prepare(const TableSetting& table, const RowSet& rows, bool column_list) {
    table_ = table.Name();
    insert_ = u"insert into ";
    dialect_.AppendName(insert_, table_);
    kinds_.clear();
    StringView separator = u"(";
    for (const ColumnDefinition& column : rows.Columns) {
        kinds_.push_back(dialect_.LiteralKindOf(column));
        if (!column_list || !column.Included) continue;
        insert_ += separator;
        separator = u",";
        dialect_.AppendName(insert_, column.Name);
    }
    if (separator == u",") insert_ += u')';
    insert_ += u" values";
}

bool DialectStatements::AppendValues(String& error, String& statement, const RowSet& rows) const {
    if (rows.Row.size() != kinds_.size()) return RefuseRow(error);
    StringView separator = u" (";
    for (std::size_t i = 0; i < kinds_.size(); ++i) {
        const DataValue& value = rows.Row[i];
        if (!value.Included) continue;
        statement += separator;
        separator = u",";
        if (value.IsNull) {
            statement += u"NULL";
        } else {
            dialect_.AppendLiteral(statement, kinds_[i], value.Text);
        }
    }
    if (separator != u",") statement += separator;
    statement += u')';
    return true;
}

bool DialectStatements::AddColumn(String& error, const TableSetting& table, const RowSet& rows) {
    if (!rows.TableName.empty()) table_ = table.NameOf(rows.TableName, rows.SchemaName);
    TableColumn column;
    if (!ReadDescribedColumn(error, rows, column)) return false;
    columns_.push_back(std::move(column));
    return true;
}

void DialectStatements::AppendTable(String& statement) {
    statement += CreateTableStatement(dialect_, table_, columns_);
    columns_.clear();
}

bool DialectStatements::AppendNestedTable(String& error, String& statement,
                                          const TableSetting& table, const RowSet& rows) {
    columns_.clear();
    for (const RowSet& column : *rows.Nested) {
        if (!ReadDescribedColumn(error, column, columns_.emplace_back())) return false;
    }
    if (columns_.empty()) return true;
    const StringView name = rows.Row.empty() ? StringView() : rows.Row[0].Text;
    table_ = table.NameOf(name, rows.Row.size() < 2 ? StringView() : rows.Row[1].Text);
    AppendTable(statement);
    return true;
}

}  // namespace sql
