#pragma once

#include <vector>

#include "core/row_set.h"
#include "storages/sql_dialect.h"

namespace sql {

// A statement that makes a table, without what ends a statement:
//
//     create table "public"."item" (
//      "id" integer not null,
//      "price" numeric(9,2) default 7,
//      "name" varchar(40) default 'none')
//
// columns: at least one; those that are not included are left out
String CreateTableStatement(const SqlDialect& dialect, const TableName& name,
                            const std::vector<TableColumn>& columns);

}  // namespace sql
