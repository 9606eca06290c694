// The type words of each dialect.
#pragma once

#include <cstdint>

#include "core/column_type.h"

namespace sql {

// A type with a size, up to a limit.
struct SizedWord {
    StringView word;
    std::int64_t limit;
};

struct TypeWords {
    StringView bit;
    StringView tiny_int;
    StringView unsigned_tiny_int;
    StringView small_int;
    StringView integer;
    StringView big_int;
    StringView unsigned_suffix;  // empty: the next larger type holds what has no sign
    StringView real;
    StringView double_precision;
    SizedWord decimal;         // its limit: the digits that it keeps exactly
    StringView wide_decimal;   // beyond the limit
    StringView plain_decimal;  // without a size
    StringView date;
    StringView time;
    StringView timestamp;
    std::int32_t time_digits;  // of a second, that the bare words have
    std::int32_t timestamp_digits;
    std::int32_t most_digits;
    SizedWord character;
    SizedWord varchar;
    StringView long_text;
    SizedWord binary;
    SizedWord varbinary;
    StringView long_binary;
    StringView guid;
};

extern const TypeWords kAnsiTypes;
extern const TypeWords kSqliteTypes;
extern const TypeWords kPostgresTypes;
extern const TypeWords kMySqlTypes;
extern const TypeWords kSqlServerTypes;

// The type that a column gets; see SqlDialect::TypeOf.
String TypeWord(const TypeWords& words, const ColumnDefinition& column);

// True when that is a type of texts although the column is one of numbers.
bool KeepsNumberAsText(const TypeWords& words, const ColumnDefinition& column);

}  // namespace sql
