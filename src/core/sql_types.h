// ODBC type codes as a ColumnDefinition holds them; see the ODBC reference, "SQL data types". Named
// here so that sources and targets that read no database need no ODBC header.
#pragma once

#include <cstdint>

constexpr std::int32_t kSqlWVarchar = -9;
constexpr std::int32_t kSqlBigInt = -5;
constexpr std::int32_t kSqlNumeric = 2;
constexpr std::int32_t kSqlInteger = 4;
constexpr std::int32_t kSqlSmallInt = 5;
constexpr std::int32_t kSqlFloat = 6;
constexpr std::int32_t kSqlReal = 7;
constexpr std::int32_t kSqlVarchar = 12;
