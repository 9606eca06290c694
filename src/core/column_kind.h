#pragma once

#include "core/row_set.h"

// What the values of a column are, as far as a document or another database cares.
enum class ColumnKind { Text, Integer, Decimal, Float, Bit, Date, Time, Timestamp, Binary };

// By the concise ODBC type (the ODBC reference, "SQL data types"). Where a driver reports text for
// a declared type of numbers or dates, as SQLite's does for decimal, real and date, the declared
// type's name counts.
ColumnKind KindOf(const ColumnDefinition& column);

inline bool IsNumber(ColumnKind kind) {
    return kind == ColumnKind::Integer || kind == ColumnKind::Decimal || kind == ColumnKind::Float;
}
