#pragma once

#include <vector>

#include "consumers/table_setting.h"
#include "core/row_set.h"

namespace sql {

// How the statements of a script are written. A statement is put together in a text of the
// caller's, without what ends it.
class StatementForm {
public:
    virtual ~StatementForm() = default;

    // Takes the table and the columns of the rows that follow.
    // column_list: insert statements name the columns
    virtual void Prepare(const TableSetting& table, const RowSet& rows, bool column_list) = 0;

    // Begins an insert statement.
    virtual void AppendInsert(String& statement) const = 0;
    // Appends the row as " (1,'O''Brien',NULL)"; values of removed columns are left out. Fails with
    // "Cound not build SQL statement", published spelling, when the row has not one value for each
    // column.
    virtual bool AppendValues(String& error, String& statement, const RowSet& rows) const = 0;

    // Takes the description of a column of the table. Fails likewise when the row is too short.
    virtual bool AddColumn(String& error, const TableSetting& table, const RowSet& rows) = 0;
    // Appends the statement that makes the table of the columns taken until now, and forgets them.
    virtual void AppendTable(String& statement) = 0;
    // Whether there are any such columns.
    virtual bool HasColumns() const = 0;
    // Whether AppendTable is wanted for a result set without rows, too.
    virtual bool EndsEmptyTables() const = 0;
    // Likewise of a row that names a table and its schema, and brings its columns along.
    virtual bool AppendNestedTable(String& error, String& statement, const TableSetting& table,
                                   const RowSet& rows) = 0;
};

}  // namespace sql
