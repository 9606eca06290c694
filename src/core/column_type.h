#pragma once

#include "core/row_set.h"

// The types of columns that databases tell apart.
enum class ColumnType {
    Bit,
    TinyInt,
    SmallInt,
    Integer,
    BigInt,
    Decimal,
    Real,
    Double,
    Date,
    Time,
    Timestamp,
    Char,
    Varchar,
    LongText,
    Binary,
    Varbinary,
    LongBinary,
    Guid,
};

// What the values of a column are, as far as a document or a literal cares.
enum class ColumnKind { Text, Integer, Decimal, Float, Bit, Date, Time, Timestamp, Binary };

// By the concise ODBC type (the ODBC reference, "SQL data types"). Where a driver reports text for
// a declared type, as SQLite's does for decimal and blob, or no type, the declared type's name
// counts.
ColumnType TypeOf(const ColumnDefinition& column);
ColumnKind KindOf(ColumnType type);
inline ColumnKind KindOf(const ColumnDefinition& column) { return KindOf(TypeOf(column)); }

inline bool IsNumber(ColumnKind kind) {
    return kind == ColumnKind::Integer || kind == ColumnKind::Decimal || kind == ColumnKind::Float;
}
