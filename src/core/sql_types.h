// ODBC type codes as a ColumnDefinition holds them; see the ODBC reference, "SQL data types". Named
// here so that sources and targets that read no database need no ODBC header.
#pragma once

#include <cstdint>

constexpr std::int32_t kSqlGuid = -11;
constexpr std::int32_t kSqlWLongVarchar = -10;
constexpr std::int32_t kSqlWVarchar = -9;
constexpr std::int32_t kSqlWChar = -8;
constexpr std::int32_t kSqlBit = -7;
constexpr std::int32_t kSqlTinyInt = -6;
constexpr std::int32_t kSqlBigInt = -5;
constexpr std::int32_t kSqlLongVarbinary = -4;
constexpr std::int32_t kSqlVarbinary = -3;
constexpr std::int32_t kSqlBinary = -2;
constexpr std::int32_t kSqlLongVarchar = -1;
constexpr std::int32_t kSqlChar = 1;
constexpr std::int32_t kSqlNumeric = 2;
constexpr std::int32_t kSqlDecimal = 3;
constexpr std::int32_t kSqlInteger = 4;
constexpr std::int32_t kSqlSmallInt = 5;
constexpr std::int32_t kSqlFloat = 6;
constexpr std::int32_t kSqlReal = 7;
constexpr std::int32_t kSqlDouble = 8;
constexpr std::int32_t kSqlVarchar = 12;
constexpr std::int32_t kSqlTypeDate = 91;
constexpr std::int32_t kSqlTypeTime = 92;
constexpr std::int32_t kSqlTypeTimestamp = 93;
