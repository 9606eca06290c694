#include "storages/odbc_columns.h"

#include <optional>

#include "core/column_type.h"
#include "storages/odbc_calls.h"

namespace DataStorages {
namespace {

constexpr std::size_t kTextBufferBytes = 255;

// Literals of these types stand in quotes unless the driver says otherwise.
bool IsQuotedType(std::int32_t type) {
    switch (type) {
        case SQL_UNKNOWN_TYPE:
        case SQL_CHAR:
        case SQL_VARCHAR:
        case SQL_LONGVARCHAR:
        case SQL_WCHAR:
        case SQL_WVARCHAR:
        case SQL_WLONGVARCHAR:
        case SQL_DATETIME:
        case SQL_TYPE_DATE:
        case SQL_TYPE_TIME:
        case SQL_TYPE_TIMESTAMP:
        case SQL_TIMESTAMP:
        case SQL_BINARY:
        case SQL_VARBINARY:
        case SQL_LONGVARBINARY:
            return true;
        default:
            return false;
    }
}

// One column of a result set, asked for what it is. The calls of ODBC 2 come first; MariaDB's
// driver knows those of ODBC 3 only.
class DescribedColumn {
public:
    DescribedColumn(void* statement, std::uint16_t number)
        : statement_(statement), number_(number) {}

    String Text(std::uint16_t field) const { return ToldText(field).value_or(String()); }
    std::int32_t Number(std::uint16_t field) const { return ToldNumber(field).value_or(0); }

    // Nothing where the driver does not tell.
    std::optional<String> ToldText(std::uint16_t field) const {
        std::optional<String> text = TextByOldCall(field);
        if (text) return text;
        TextBuffer buffer{};
        SQLSMALLINT length = 0;
        const bool known =
            odbc::Succeeded(SQLColAttributeW(statement_, number_, field, buffer.data(),
                                             odbc::RoomInBytes(buffer), &length, nullptr));
        return known ? std::optional(odbc::TextOf(buffer)) : std::nullopt;
    }
    std::optional<std::int32_t> ToldNumber(std::uint16_t field) const {
        SQLLEN value = 0;
        const bool known = odbc::Succeeded(SQLColAttributesW(statement_, number_, field, nullptr, 0,
                                                             nullptr, &value)) ||
                           odbc::Succeeded(SQLColAttributeW(statement_, number_, field, nullptr, 0,
                                                            nullptr, &value));
        return known ? std::optional(static_cast<std::int32_t>(value)) : std::nullopt;
    }

    // The digits behind the decimal point, or of a second. PostgreSQL's driver tells those of a
    // second by another call only; SQLite's tells those of a decimal, which it has for a text, as
    // the precision.
    std::int32_t Digits(const ColumnDefinition& column) const {
        if (IsQuotedType(column.ConciseType) && KindOf(column) == ColumnKind::Decimal) {
            return Number(SQL_DESC_PRECISION);
        }
        const std::int32_t scale = Number(SQL_DESC_SCALE);
        if (scale != 0) return scale;
        SQLSMALLINT digits = 0;
        const bool known = odbc::Succeeded(SQLDescribeColW(statement_, number_, nullptr, 0, nullptr,
                                                           nullptr, nullptr, &digits, nullptr));
        return known ? digits : -1;
    }

    // The literal prefix or suffix. By the old call only: MariaDB's driver tells "0x" for some
    // types whose values it delivers as characters.
    String Literal(std::uint16_t field, std::int32_t type) const {
        return TextByOldCall(field).value_or(IsQuotedType(type) ? u"'" : u"");
    }

private:
    using TextBuffer = std::array<char16_t, kTextBufferBytes / sizeof(char16_t) + 1>;

    std::optional<String> TextByOldCall(std::uint16_t field) const {
        TextBuffer buffer{};
        SQLSMALLINT length = 0;
        const bool known =
            odbc::Succeeded(SQLColAttributesW(statement_, number_, field, buffer.data(),
                                              odbc::RoomInBytes(buffer), &length, nullptr));
        return known ? std::optional(odbc::TextOf(buffer)) : std::nullopt;
    }

    void* statement_;
    std::uint16_t number_;
};

// told: false where the name or the type is not
ColumnDefinition Describe(const DescribedColumn& described, bool& told) {
    ColumnDefinition column;
    const std::optional<String> name = described.ToldText(SQL_DESC_NAME);
    const std::optional<std::int32_t> type = described.ToldNumber(SQL_DESC_CONCISE_TYPE);
    told = told && name && type;
    column.Name = name.value_or(String());
    column.TableName = described.Text(SQL_DESC_TABLE_NAME);
    column.Length = described.Number(SQL_DESC_LENGTH);
    column.DisplaySize = described.Number(SQL_DESC_DISPLAY_SIZE);
    column.DataType = described.Number(SQL_DESC_TYPE);
    column.ConciseType = type.value_or(0);
    column.OctetLength = described.Number(SQL_DESC_OCTET_LENGTH);
    column.AutoUnique = described.Number(SQL_DESC_AUTO_UNIQUE_VALUE) == SQL_TRUE;
    column.Nullable = described.Number(SQL_DESC_NULLABLE) != SQL_NO_NULLS;
    column.LiteralPrefix = described.Literal(SQL_DESC_LITERAL_PREFIX, column.DataType);
    column.LiteralSuffix = described.Literal(SQL_DESC_LITERAL_SUFFIX, column.DataType);
    column.LocalTypeName = described.Text(SQL_DESC_LOCAL_TYPE_NAME);
    column.TypeName = described.Text(SQL_DESC_TYPE_NAME);
    column.Unsigned = described.Number(SQL_DESC_UNSIGNED) == SQL_TRUE;
    column.Digits = described.Digits(column);
    column.MaxWidth = column.Name.size();
    return column;
}

}  // namespace

DescribedResult DescribeColumns(void* statement, std::vector<ColumnDefinition>& columns) {
    columns.clear();
    DescribedResult result;
    result.told = odbc::Succeeded(SQLNumResultCols(statement, &result.columns));
    if (!result.told || result.columns < 0) result.columns = 0;
    for (SQLSMALLINT number = 1; number <= result.columns; ++number) {
        columns.push_back(Describe({statement, static_cast<std::uint16_t>(number)}, result.told));
    }
    return result;
}

}  // namespace DataStorages
