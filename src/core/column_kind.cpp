#include "core/column_kind.h"

#include "core/sql_types.h"
#include "files/text.h"

namespace {

struct DeclaredType {
    StringView word;
    ColumnKind kind;
};

// Declared types that some driver reports as text; the first word of a type's name counts.
constexpr DeclaredType kDeclaredTypes[] = {
    {u"tinyint", ColumnKind::Integer},
    {u"smallint", ColumnKind::Integer},
    {u"int", ColumnKind::Integer},
    {u"integer", ColumnKind::Integer},
    {u"bigint", ColumnKind::Integer},
    {u"decimal", ColumnKind::Decimal},
    {u"numeric", ColumnKind::Decimal},
    {u"number", ColumnKind::Decimal},
    {u"real", ColumnKind::Float},
    {u"float", ColumnKind::Float},
    {u"double", ColumnKind::Float},
    {u"boolean", ColumnKind::Bit},
    {u"bool", ColumnKind::Bit},
    {u"date", ColumnKind::Date},
    {u"time", ColumnKind::Time},
    {u"datetime", ColumnKind::Timestamp},
    {u"timestamp", ColumnKind::Timestamp},
};

ColumnKind KindOfDeclared(StringView type_name) {
    const StringView word = type_name.substr(0, type_name.find_first_of(u" ("));
    for (const DeclaredType& type : kDeclaredTypes) {
        if (text::EqualsIgnoringCase(word, type.word)) return type.kind;
    }
    return ColumnKind::Text;
}

}  // namespace

ColumnKind KindOf(const ColumnDefinition& column) {
    switch (column.ConciseType) {
        case kSqlTinyInt:
        case kSqlSmallInt:
        case kSqlInteger:
        case kSqlBigInt:
            return ColumnKind::Integer;
        case kSqlNumeric:
        case kSqlDecimal:
            return ColumnKind::Decimal;
        case kSqlFloat:
        case kSqlReal:
        case kSqlDouble:
            return ColumnKind::Float;
        case kSqlBit:
            return ColumnKind::Bit;
        case kSqlTypeDate:
            return ColumnKind::Date;
        case kSqlTypeTime:
            return ColumnKind::Time;
        case kSqlTypeTimestamp:
            return ColumnKind::Timestamp;
        case kSqlBinary:
        case kSqlVarbinary:
        case kSqlLongVarbinary:
            return ColumnKind::Binary;
        default:
            return KindOfDeclared(column.TypeName);
    }
}
