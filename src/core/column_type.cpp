#include "core/column_type.h"

#include <optional>

#include "core/sql_types.h"
#include "files/text.h"

namespace {

struct DeclaredType {
    StringView word;
    ColumnType type;
};

// Declared types that some driver reports as text; the first word of a type's name counts.
constexpr DeclaredType kDeclaredTypes[] = {
    {u"tinyint", ColumnType::TinyInt},     {u"smallint", ColumnType::SmallInt},
    {u"int2", ColumnType::SmallInt},       {u"int", ColumnType::Integer},
    {u"int4", ColumnType::Integer},        {u"integer", ColumnType::Integer},
    {u"mediumint", ColumnType::Integer},   {u"bigint", ColumnType::BigInt},
    {u"int8", ColumnType::BigInt},         {u"decimal", ColumnType::Decimal},
    {u"numeric", ColumnType::Decimal},     {u"number", ColumnType::Decimal},
    {u"real", ColumnType::Double},  // eight bytes in SQLite
    {u"float4", ColumnType::Real},         {u"float", ColumnType::Double},
    {u"float8", ColumnType::Double},       {u"double", ColumnType::Double},
    {u"boolean", ColumnType::Bit},         {u"bool", ColumnType::Bit},
    {u"date", ColumnType::Date},           {u"time", ColumnType::Time},
    {u"datetime", ColumnType::Timestamp},  {u"datetime2", ColumnType::Timestamp},
    {u"timestamp", ColumnType::Timestamp}, {u"char", ColumnType::Char},
    {u"nchar", ColumnType::Char},          {u"bpchar", ColumnType::Char},
    {u"varchar", ColumnType::Varchar},     {u"nvarchar", ColumnType::Varchar},
    {u"varchar2", ColumnType::Varchar},    {u"text", ColumnType::LongText},
    {u"clob", ColumnType::LongText},       {u"ntext", ColumnType::LongText},
    {u"longtext", ColumnType::LongText},   {u"binary", ColumnType::Binary},
    {u"varbinary", ColumnType::Varbinary}, {u"blob", ColumnType::LongBinary},
    {u"longblob", ColumnType::LongBinary}, {u"bytea", ColumnType::LongBinary},
    {u"uuid", ColumnType::Guid},           {u"uniqueidentifier", ColumnType::Guid},
};

std::optional<ColumnType> Declared(const ColumnDefinition& column) {
    const StringView name = column.TypeName;
    const StringView word = name.substr(0, name.find_first_of(u" ("));
    // Elsewhere a text of so many bits.
    if (text::EqualsIgnoringCase(word, u"bit") && column.Length <= 1) return ColumnType::Bit;
    // "character varying" is no "character".
    if (text::EqualsIgnoringCase(name.substr(0, name.find(u'(')), u"character")) {
        return ColumnType::Char;
    }
    for (const DeclaredType& type : kDeclaredTypes) {
        if (text::EqualsIgnoringCase(word, type.word)) return type.type;
    }
    return std::nullopt;
}

// The driver's own word, where there is one that is no text.
std::optional<ColumnType> Told(std::int32_t code) {
    switch (code) {
        case kSqlBit:
            return ColumnType::Bit;
        case kSqlTinyInt:
            return ColumnType::TinyInt;
        case kSqlSmallInt:
            return ColumnType::SmallInt;
        case kSqlInteger:
            return ColumnType::Integer;
        case kSqlBigInt:
            return ColumnType::BigInt;
        case kSqlNumeric:
        case kSqlDecimal:
            return ColumnType::Decimal;
        case kSqlReal:
            return ColumnType::Real;
        case kSqlFloat:
        case kSqlDouble:
            return ColumnType::Double;
        case kSqlTypeDate:
            return ColumnType::Date;
        case kSqlTypeTime:
            return ColumnType::Time;
        case kSqlTypeTimestamp:
            return ColumnType::Timestamp;
        case kSqlBinary:
            return ColumnType::Binary;
        case kSqlVarbinary:
            return ColumnType::Varbinary;
        case kSqlLongVarbinary:
            return ColumnType::LongBinary;
        case kSqlGuid:
            return ColumnType::Guid;
        default:
            return std::nullopt;
    }
}

ColumnType ToldText(std::int32_t code) {
    switch (code) {
        case kSqlChar:
        case kSqlWChar:
            return ColumnType::Char;
        case kSqlLongVarchar:
        case kSqlWLongVarchar:
            return ColumnType::LongText;
        default:
            return ColumnType::Varchar;
    }
}

}  // namespace

ColumnType TypeOf(const ColumnDefinition& column) {
    const std::optional<ColumnType> told = Told(column.ConciseType);
    if (told && told != ColumnType::Double) return *told;
    const std::optional<ColumnType> declared = Declared(column);
    if (!told) {
        const ColumnType text = ToldText(column.ConciseType);
        const bool is_text = declared && KindOf(*declared) == ColumnKind::Text;
        return is_text && text == ColumnType::LongText ? text : declared.value_or(text);
    }
    // SQLite's driver tells of numeric as of double.
    return declared == ColumnType::Decimal ? ColumnType::Decimal : ColumnType::Double;
}

ColumnKind KindOf(ColumnType type) {
    switch (type) {
        case ColumnType::Bit:
            return ColumnKind::Bit;
        case ColumnType::TinyInt:
        case ColumnType::SmallInt:
        case ColumnType::Integer:
        case ColumnType::BigInt:
            return ColumnKind::Integer;
        case ColumnType::Decimal:
            return ColumnKind::Decimal;
        case ColumnType::Real:
        case ColumnType::Double:
            return ColumnKind::Float;
        case ColumnType::Date:
            return ColumnKind::Date;
        case ColumnType::Time:
            return ColumnKind::Time;
        case ColumnType::Timestamp:
            return ColumnKind::Timestamp;
        case ColumnType::Binary:
        case ColumnType::Varbinary:
        case ColumnType::LongBinary:
            return ColumnKind::Binary;
        case ColumnType::Char:
        case ColumnType::Varchar:
        case ColumnType::LongText:
        case ColumnType::Guid:
            break;
    }
    return ColumnKind::Text;
}
