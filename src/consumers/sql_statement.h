// The texts of SQL statements, put together from row sets; for scripts and for databases.
#pragma once

#include <vector>

#include "base/strings.h"
#include "core/row_set.h"

namespace sql {

// Positions of the values of a row that describes a column.
enum Described : std::size_t { kColumn = 1, kTypeName, kSize, kDigits, kNullable, kDefault };

// Such a value; empty where it is NULL or missing.
StringView DescribedText(const DataRow& row, std::size_t position);

// Says that the row cannot be written: "Cound not build SQL statement", published spelling. False.
bool RefuseRow(String& error);

// What begins an insert statement, ready for a value list:
//
//     insert into "Orders"("Id","Name") values
//
// table: written between double quotes, unless it holds a full stop, an opening bracket or a
//        double quote: whoever wrote it has then quoted it already.
// column_list: names the columns, those that are included.
String InsertPrefix(StringView table, const std::vector<ColumnDefinition>& columns,
                    bool column_list);

// Appends the included values of the row as " (1,'O''Brien',NULL)", between the literal
// prefixes and suffixes of their columns, single quotes doubled. Fails with "Cound not build SQL
// statement", published spelling, when the row has not one value for each column.
bool AppendValueList(String& error, String& statement, const std::vector<ColumnDefinition>& columns,
                     const DataRow& row);

struct QualifiedName {
    StringView schema;  // may be empty
    StringView table;
};

// Divides a name at its last full stop outside double quotes and brackets. The quotes or brackets
// around each piece go. The pieces are views into `name`.
QualifiedName DivideName(StringView name);

// Whether the rows of column descriptions name their table: the setting is empty or "$TABLE$", and
// the rows know it.
bool NamedByRows(StringView setting, const RowSet& rows);

// The table that rows of column descriptions belong to: what the setting names, or the rows' own
// table where the setting is empty or "$TABLE$" and the rows know it.
// setting, resolved: the table's name before and after its macros were replaced.
QualifiedName NameOfDescribed(StringView setting, StringView resolved, const RowSet& rows);

// Appends the line of a column to a create table statement, which it begins where `statement` is
// empty:
//
//     create table "schema"."table" (
//      price numeric(9,2)  default 7 not null
//
// row: describes the column, as the rows of a database's structure do: table, column, type name,
//      size, digits, nullable, default. Values that are NULL or missing count as empty. The size is
//      written for types with "char", "binary", "numeric", "number" or "money" in their name, 0 as
//      "max", and for the last three with the digits, unless they are 0. A type name that ends
//      with ")" has its size already. A nullable of "0" gives
//      "not null".
// Fails as AppendValueList does when the row is too short to hold a type name.
bool AppendColumnLine(String& error, String& statement, const QualifiedName& table,
                      const DataRow& row);

}  // namespace sql
