#include "storages/create_table.h"

namespace sql {
namespace {

// Where a literal is put together by a function, or belongs to a long type of MySQL, the default is
// an expression, which stands in brackets.
void AppendDefault(String& statement, const SqlDialect& dialect, const ColumnDefinition& column,
                   StringView value) {
    String literal;
    dialect.AppendLiteral(literal, dialect.LiteralKindOf(column), value);
    const bool is_expression =
        literal.starts_with(u"replace(") || dialect.TypeOf(column) == u"longtext";
    statement += u" default ";
    if (is_expression) statement += u'(';
    statement += literal;
    if (is_expression) statement += u')';
}

}  // namespace

String CreateTableStatement(const SqlDialect& dialect, const TableName& name,
                            const std::vector<TableColumn>& columns) {
    String statement = u"create table ";
    dialect.AppendName(statement, name);
    bool first = true;
    for (const auto& [column, value] : columns) {
        if (!column.Included) continue;
        statement += first ? u" (\r\n " : u",\r\n ";
        first = false;
        dialect.AppendName(statement, column.Name);
        statement += u' ';
        statement += dialect.TypeOf(column);
        if (value) AppendDefault(statement, dialect, column, *value);
        statement += column.Nullable ? dialect.NullableWord() : u" not null";
    }
    return statement += u')';
}

}  // namespace sql
