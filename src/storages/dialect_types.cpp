#include "storages/dialect_types.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "core/sql_types.h"
#include "files/format.h"
#include "files/text.h"

namespace sql {
namespace {

constexpr std::int64_t kNoLimit = std::numeric_limits<std::int64_t>::max();

// Drivers tell these where a declared type has no size: SQLite's and PostgreSQL's of texts,
// PostgreSQL's of decimal numbers, with the digits of the rows that it has read so far.
constexpr std::int32_t kUnsizedText = 255;
constexpr std::int32_t kUnsizedDecimal = 28;
constexpr StringView kUnsizedDecimalName = u"numeric";

struct Size {
    std::int64_t length;
    std::int32_t digits;
};

// "(9,2)" or "(40)" in the name of a type.
std::optional<Size> SizeInName(StringView type_name) {
    const std::size_t open = type_name.find(u'(');
    if (open == StringView::npos) return std::nullopt;
    const StringView size = type_name.substr(open + 1);
    const std::int64_t length = text::ToInteger(size);
    if (length <= 0) return std::nullopt;
    const std::size_t comma = size.find(u',');
    const std::int64_t digits =
        comma == StringView::npos ? 0 : text::ToInteger(size.substr(comma + 1));
    return Size{length, static_cast<std::int32_t>(std::clamp<std::int64_t>(digits, 0, length))};
}

bool IsToldAsDouble(const ColumnDefinition& column) {
    return column.ConciseType == kSqlDouble || column.ConciseType == kSqlFloat;
}

// More digits behind the point than there are at all ("numeric(3,5)") are PostgreSQL's; its driver
// tells a negative number of them, which cuts in front of the point, without the sign of its 11
// bits.
Size WholeSize(std::int64_t length, std::int32_t digits) {
    constexpr std::int32_t kMostDigits = 1'000;
    constexpr std::int32_t kNoSign = 2'048;
    if (digits > kMostDigits && digits < kNoSign) return {length + kNoSign - digits, 0};
    return {std::max<std::int64_t>(length, digits), digits};
}

std::optional<Size> DecimalSize(const ColumnDefinition& column) {
    if (const std::optional<Size> size = SizeInName(column.TypeName)) return size;
    if (column.Unsized) return std::nullopt;
    const bool is_real = !IsToldAsDouble(column) && column.Length > 0 && column.Digits >= 0 &&
                         column.Length != kUnsizedText;
    const bool is_unsized = column.Length == kUnsizedDecimal &&
                            text::EqualsIgnoringCase(column.TypeName, kUnsizedDecimalName);
    if (!is_real || is_unsized) return std::nullopt;
    return WholeSize(column.Length, column.Digits);
}

// A size of 255 is real where it takes more than 255 bytes.
std::optional<Size> TextSize(const ColumnDefinition& column, ColumnType type) {
    if (const std::optional<Size> size = SizeInName(column.TypeName)) return size;
    const bool is_long = type == ColumnType::LongText || type == ColumnType::LongBinary;
    const bool is_unsized =
        column.Unsized || (column.Length == kUnsizedText && column.OctetLength <= kUnsizedText);
    if (is_long || is_unsized || column.Length <= 0) return std::nullopt;
    // MariaDB tells bits among the bytes, and how many bits they are.
    const bool is_bits = text::EqualsIgnoringCase(column.TypeName, u"bit");
    return Size{is_bits ? column.OctetLength : column.Length, 0};
}

// ---- The words of a column ----

String Sized(const SizedWord& type, const std::optional<Size>& size, StringView longest) {
    if (!size || size->length > type.limit) return String(longest);
    return Format(u"%s(%d)", type.word, size->length);
}

bool IsUnsigned(const ColumnDefinition& column) {
    return column.Unsigned || text::Lowered(column.TypeName).ends_with(u" unsigned");
}

String DecimalWord(const TypeWords& words, const std::optional<Size>& size) {
    if (!size) return String(words.plain_decimal);
    if (size->length > words.decimal.limit) return String(words.wide_decimal);
    return Format(u"%s(%d,%d)", words.decimal.word, size->length, size->digits);
}

constexpr Size kUnsignedBigInt{20, 0};

String WholeNumberWord(const TypeWords& words, ColumnType type, bool is_unsigned) {
    const bool larger = is_unsigned && words.unsigned_suffix.empty();
    const StringView suffix = is_unsigned ? words.unsigned_suffix : StringView();
    switch (type) {
        case ColumnType::TinyInt:
            return String(is_unsigned ? words.unsigned_tiny_int : words.tiny_int);
        case ColumnType::SmallInt:
            return String(larger ? words.integer : words.small_int).append(suffix);
        case ColumnType::Integer:
            return String(larger ? words.big_int : words.integer).append(suffix);
        default:
            break;
    }
    return larger ? DecimalWord(words, kUnsignedBigInt) : String(words.big_int).append(suffix);
}

// The fraction of a second stands in brackets where the bare word has less.
String TimeWord(StringView word, std::int32_t bare_digits, const TypeWords& words,
                const ColumnDefinition& column) {
    const std::int32_t most = words.most_digits;
    const std::int32_t digits = column.Digits < 0 ? most : std::min(column.Digits, most);
    return digits <= bare_digits ? String(word) : Format(u"%s(%d)", word, digits);
}

String TextWord(const TypeWords& words, const ColumnDefinition& column, ColumnType type) {
    const SizedWord& sized = type == ColumnType::Char ? words.character : words.varchar;
    const std::optional<Size> size = TextSize(column, type);
    if (size && size->length > sized.limit) return Sized(words.varchar, size, words.long_text);
    return Sized(sized, size, words.long_text);
}

String BinaryWord(const TypeWords& words, const ColumnDefinition& column, ColumnType type) {
    const SizedWord& sized = type == ColumnType::Binary ? words.binary : words.varbinary;
    const std::optional<Size> size = TextSize(column, type);
    if (size && size->length > sized.limit) return Sized(words.varbinary, size, words.long_binary);
    return Sized(sized, size, words.long_binary);
}

}  // namespace

String TypeWord(const TypeWords& words, const ColumnDefinition& column) {
    const ColumnType type = TypeOf(column);
    switch (type) {
        case ColumnType::Bit:
            return String(words.bit);
        case ColumnType::TinyInt:
        case ColumnType::SmallInt:
        case ColumnType::Integer:
        case ColumnType::BigInt:
            return WholeNumberWord(words, type, IsUnsigned(column));
        case ColumnType::Decimal:
            if (IsToldAsDouble(column) && !DecimalSize(column)) return String(words.loose_decimal);
            return DecimalWord(words, DecimalSize(column));
        case ColumnType::Real:
            return String(words.real);
        case ColumnType::Double:
            return String(words.double_precision);
        case ColumnType::Date:
            return String(words.date);
        case ColumnType::Time:
            return TimeWord(words.time, words.time_digits, words, column);
        case ColumnType::Timestamp:
            return TimeWord(words.timestamp, words.timestamp_digits, words, column);
        case ColumnType::Binary:
        case ColumnType::Varbinary:
        case ColumnType::LongBinary:
            return BinaryWord(words, column, type);
        case ColumnType::Guid:
            return String(words.guid);
        case ColumnType::Char:
        case ColumnType::Varchar:
        case ColumnType::LongText:
            break;
    }
    return TextWord(words, column, type);
}

bool KeepsNumberAsText(const TypeWords& words, const ColumnDefinition& column) {
    return IsNumber(KindOf(column)) && TypeWord(words, column) == words.long_text;
}

// ---- The dialects ----

const TypeWords kAnsiTypes = {
    .bit = u"boolean",
    .tiny_int = u"smallint",
    .unsigned_tiny_int = u"smallint",
    .small_int = u"smallint",
    .integer = u"integer",
    .big_int = u"bigint",
    .unsigned_suffix = {},
    .real = u"real",
    .double_precision = u"double precision",
    .decimal = {u"decimal", kNoLimit},
    .wide_decimal = {},
    .plain_decimal = u"decimal(28,6)",
    .loose_decimal = u"double precision",
    .date = u"date",
    .time = u"time",
    .timestamp = u"timestamp",
    .time_digits = 0,
    .timestamp_digits = 6,
    .most_digits = 6,
    .character = {u"char", kNoLimit},
    .varchar = {u"varchar", kNoLimit},
    .long_text = u"clob",
    .binary = {u"binary", kNoLimit},
    .varbinary = {u"varbinary", kNoLimit},
    .long_binary = u"blob",
    .guid = u"char(36)",
};

// The words are those that its drivers know. Its own numbers keep 15 digits.
const TypeWords kSqliteTypes = {
    .bit = u"boolean",
    .tiny_int = u"tinyint",
    .unsigned_tiny_int = u"tinyint",
    .small_int = u"smallint",
    .integer = u"integer",
    .big_int = u"bigint",
    .unsigned_suffix = {},
    .real = u"real",
    .double_precision = u"double",
    .decimal = {u"decimal", 15},
    .wide_decimal = u"text",
    .plain_decimal = u"text",
    .loose_decimal = u"numeric",
    .date = u"date",
    .time = u"time",
    .timestamp = u"timestamp",
    .time_digits = 6,
    .timestamp_digits = 6,
    .most_digits = 6,
    .character = {u"char", kNoLimit},
    .varchar = {u"varchar", kNoLimit},
    .long_text = u"text",
    .binary = {u"binary", kNoLimit},
    .varbinary = {u"varbinary", kNoLimit},
    .long_binary = u"blob",
    .guid = u"char(36)",
};

const TypeWords kPostgresTypes = {
    .bit = u"boolean",
    .tiny_int = u"smallint",
    .unsigned_tiny_int = u"smallint",
    .small_int = u"smallint",
    .integer = u"integer",
    .big_int = u"bigint",
    .unsigned_suffix = {},
    .real = u"real",
    .double_precision = u"double precision",
    .decimal = {u"numeric", 1'000},
    .wide_decimal = u"numeric",
    .plain_decimal = u"numeric",
    .loose_decimal = u"numeric",
    .date = u"date",
    .time = u"time",
    .timestamp = u"timestamp",
    .time_digits = 6,
    .timestamp_digits = 6,
    .most_digits = 6,
    .character = {u"char", 10'485'760},
    .varchar = {u"varchar", 10'485'760},
    .long_text = u"text",
    .binary = {u"bytea", 0},
    .varbinary = {u"bytea", 0},
    .long_binary = u"bytea",
    .guid = u"uuid",
};

// The columns of a row share 65,535 bytes, long types aside.
const TypeWords kMySqlTypes = {
    .bit = u"boolean",
    .tiny_int = u"tinyint",
    .unsigned_tiny_int = u"tinyint unsigned",
    .small_int = u"smallint",
    .integer = u"int",
    .big_int = u"bigint",
    .unsigned_suffix = u" unsigned",
    .real = u"float",
    .double_precision = u"double",
    .decimal = {u"decimal", 65},
    .wide_decimal = u"longtext",
    .plain_decimal = u"decimal(65,30)",
    .loose_decimal = u"double",
    .date = u"date",
    .time = u"time",
    .timestamp = u"datetime",
    .time_digits = 0,
    .timestamp_digits = 0,
    .most_digits = 6,
    .character = {u"char", 255},
    .varchar = {u"varchar", 4'000},
    .long_text = u"longtext",
    .binary = {u"binary", 255},
    .varbinary = {u"varbinary", 4'000},
    .long_binary = u"longblob",
    .guid = u"char(36)",
};

const TypeWords kSqlServerTypes = {
    .bit = u"bit",
    .tiny_int = u"smallint",
    .unsigned_tiny_int = u"tinyint",
    .small_int = u"smallint",
    .integer = u"int",
    .big_int = u"bigint",
    .unsigned_suffix = {},
    .real = u"real",
    .double_precision = u"float",
    .decimal = {u"decimal", 38},
    .wide_decimal = u"nvarchar(max)",
    .plain_decimal = u"decimal(38,12)",
    .loose_decimal = u"float",
    .date = u"date",
    .time = u"time",
    .timestamp = u"datetime2",
    .time_digits = 7,
    .timestamp_digits = 7,
    .most_digits = 7,
    .character = {u"nchar", 4'000},
    .varchar = {u"nvarchar", 4'000},
    .long_text = u"nvarchar(max)",
    .binary = {u"binary", 8'000},
    .varbinary = {u"varbinary", 8'000},
    .long_binary = u"varbinary(max)",
    .guid = u"uniqueidentifier",
};

}  // namespace sql
