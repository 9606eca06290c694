#pragma once

#include "storages/create_table.h"

namespace sql {

// Reads the description of a column from the current row; its values are those of a database's
// structure: table, column, type name, size, digits, nullable, default. What a catalogue has told
// beside them counts as long as the row still says the same.
// Fails with "Cound not build SQL statement", published spelling, when the row is too short to hold
// a type name.
bool ReadDescribedColumn(String& error, const RowSet& rows, TableColumn& column);

}  // namespace sql
