#pragma once

#include <vector>

#include "base/strings.h"
#include "core/row_set.h"

namespace DataConsumers {

// Finds for each included column of `rows`, in their order, the column of a table that has its
// name: the very name, else one that differs in letter case only (A to Z).
// Fails with
//   "Table %s has no column '%s'."
//   "Table %s has several columns that are '%s' but for the letter case."
//   "Two columns go to column '%s' of table %s."
bool MatchColumns(String& error, StringView table, const std::vector<ColumnDefinition>& rows,
                  const std::vector<ColumnDefinition>& of_table,
                  std::vector<ColumnDefinition>& matched);

}  // namespace DataConsumers
