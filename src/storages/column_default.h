#pragma once

#include <optional>

#include "core/column_type.h"
#include "storages/sql_dialect.h"

namespace sql {

// The value of a column's default, when it is a number or a text; nothing for NULL, for expressions
// and for binary values.
// source: the database that has the column
// kind: of the column; numbers and bits have defaults of their kind only
// spelling: what its driver tells (ODBC reference, SQLColumns, COLUMN_DEF): 'it''s', 7,
//           'none'::character varying, (N'x'). SQLite's driver tells texts without their quotes and
//           NULL where there is no default, MariaDB's has escapes in them.
std::optional<String> DefaultValue(Dialect source, ColumnKind kind, StringView spelling);

}  // namespace sql
