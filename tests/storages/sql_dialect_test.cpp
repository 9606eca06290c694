#include "storages/sql_dialect.h"

#include <gtest/gtest.h>

#include "base/utf8.h"
#include "core/sql_types.h"
#include "storages/column_default.h"

namespace {

using sql::Dialect;

TEST(SqlDialect, IsToldByTheNameOfTheDatabase) {
    const std::pair<const char16_t*, Dialect> kCases[] = {
        {u"SQLite", Dialect::SQLite}, {u"PostgreSQL", Dialect::PostgreSQL},
        {u"MySQL", Dialect::MySQL},   {u"MariaDB", Dialect::MySQL},
        {u"Oracle", Dialect::ANSI},   {u"Microsoft SQL Server", Dialect::SQLServer},
        {u"", Dialect::ANSI},
    };
    for (const auto& [name, dialect] : kCases) EXPECT_EQ(sql::DialectOf(name), dialect);
}

struct TypeCase {
    std::int32_t code;
    const char16_t* name;
    std::int32_t length;
    std::int32_t octets;
    std::int32_t digits;
    const char* types;  // ANSI|SQLite|PostgreSQL|MySQL|SQLServer
};

// What the drivers tell of real columns.
const TypeCase kTypes[] = {
    {kSqlBit, u"bit", 1, 1, 0, "boolean|boolean|boolean|boolean|bit"},
    {kSqlVarchar, u"bool", 5, 5, 0, "boolean|boolean|boolean|boolean|bit"},
    {kSqlVarchar, u"bit", 3, 3, 0, "varchar(3)|varchar(3)|varchar(3)|varchar(3)|nvarchar(3)"},
    {kSqlTinyInt, u"TINYINT", 3, 1, 0, "smallint|tinyint|smallint|tinyint|smallint"},
    {kSqlTinyInt, u"TINYINT UNSIGNED", 3, 1, 0,
     "smallint|tinyint|smallint|tinyint unsigned|tinyint"},
    {kSqlInteger, u"INT UNSIGNED", 10, 4, 0, "bigint|bigint|bigint|int unsigned|bigint"},
    {kSqlBigInt, u"BIGINT UNSIGNED", 20, 20, 0,
     "decimal(20,0)|text|numeric(20,0)|bigint unsigned|decimal(20,0)"},
    {-25, u"bigint", 20, 20, 0, "bigint|bigint|bigint|bigint|bigint"},
    {kSqlReal, u"float4", 9, 4, 0, "real|real|real|float|real"},
    {kSqlDouble, u"double", 54, 54, 0, "double precision|double|double precision|double|float"},
    {kSqlNumeric, u"numeric", 12, 14, 3,
     "decimal(12,3)|decimal(12,3)|numeric(12,3)|decimal(12,3)|decimal(12,3)"},
    {kSqlNumeric, u"numeric", 28, 30, 6,
     "decimal(28,6)|text|numeric|decimal(65,30)|decimal(38,12)"},
    {kSqlNumeric, u"numeric", 28, 30, 1,  // of the rows read so far
     "decimal(28,6)|text|numeric|decimal(65,30)|decimal(38,12)"},
    {kSqlDecimal, u"decimal", 28, 30, 1,
     "decimal(28,1)|text|numeric(28,1)|decimal(28,1)|decimal(28,1)"},
    {kSqlDecimal, u"decimal", 65, 67, 30,
     "decimal(65,30)|text|numeric(65,30)|decimal(65,30)|nvarchar(max)"},
    {kSqlVarchar, u"decimal(9,2)", 2, 9, 10,
     "decimal(9,2)|decimal(9,2)|numeric(9,2)|decimal(9,2)|decimal(9,2)"},
    {kSqlDouble, u"numeric", 54, 54, 0, "double precision|numeric|numeric|double|float"},
    {kSqlVarchar, u"varchar", 255, 255, 0, "clob|text|text|longtext|nvarchar(max)"},
    {kSqlVarchar, u"varchar(255)", 255, 255, 0,
     "varchar(255)|varchar(255)|varchar(255)|varchar(255)|nvarchar(255)"},
    {kSqlWVarchar, u"VARCHAR", 255, 1'020, 0,
     "varchar(255)|varchar(255)|varchar(255)|varchar(255)|nvarchar(255)"},
    {kSqlWVarchar, u"VARCHAR", 9'000, 36'000, 0,
     "varchar(9000)|varchar(9000)|varchar(9000)|longtext|nvarchar(max)"},
    {kSqlVarchar, u"varchar", 0, 0, 0, "clob|text|text|longtext|nvarchar(max)"},
    {kSqlLongVarchar, u"text", 8'190, 8'190, 0, "clob|text|text|longtext|nvarchar(max)"},
    {kSqlChar, u"bpchar", 5, 20, 0, "char(5)|char(5)|char(5)|char(5)|nchar(5)"},
    {kSqlChar, u"char", 300, 1'200, 0, "char(300)|char(300)|char(300)|varchar(300)|nchar(300)"},
    {kSqlBinary, u"BLOB", 255, 255, 0, "blob|blob|bytea|longblob|varbinary(max)"},
    {kSqlVarbinary, u"VARBINARY", 16, 16, 0,
     "varbinary(16)|varbinary(16)|bytea|varbinary(16)|varbinary(16)"},
    {kSqlTypeTime, u"time", 8, 6, 0, "time|time|time|time|time"},
    {kSqlTypeTimestamp, u"timestamp", 26, 16, 6,
     "timestamp|timestamp|timestamp|datetime(6)|datetime2"},
    {kSqlTypeTimestamp, u"DATETIME", 19, 16, -1,
     "timestamp|timestamp|timestamp|datetime(6)|datetime2"},
    {kSqlTypeTimestamp, u"datetime", 19, 16, 0, "timestamp|timestamp|timestamp|datetime|datetime2"},
    // The longest that a dialect has, and one more.
    {kSqlDecimal, u"decimal", 38, 40, 2,
     "decimal(38,2)|text|numeric(38,2)|decimal(38,2)|decimal(38,2)"},
    {kSqlDecimal, u"decimal", 39, 41, 2,
     "decimal(39,2)|text|numeric(39,2)|decimal(39,2)|nvarchar(max)"},
    {kSqlDecimal, u"decimal", 66, 68, 2, "decimal(66,2)|text|numeric(66,2)|longtext|nvarchar(max)"},
    {kSqlDecimal, u"decimal", 1'000, 1'002, 2,
     "decimal(1000,2)|text|numeric(1000,2)|longtext|nvarchar(max)"},
    {kSqlDecimal, u"decimal", 1'001, 1'003, 2,
     "decimal(1001,2)|text|numeric|longtext|nvarchar(max)"},
    {kSqlWVarchar, u"varchar", 4'000, 8'000, 0,
     "varchar(4000)|varchar(4000)|varchar(4000)|varchar(4000)|nvarchar(4000)"},
    {kSqlWVarchar, u"varchar", 4'001, 8'002, 0,
     "varchar(4001)|varchar(4001)|varchar(4001)|longtext|nvarchar(max)"},
    {kSqlWVarchar, u"varchar", 10'485'760, 20'971'520, 0,
     "varchar(10485760)|varchar(10485760)|varchar(10485760)|longtext|nvarchar(max)"},
    {kSqlWVarchar, u"varchar", 10'485'761, 20'971'522, 0,
     "varchar(10485761)|varchar(10485761)|text|longtext|nvarchar(max)"},
    {kSqlWChar, u"char", 4'000, 8'000, 0,
     "char(4000)|char(4000)|char(4000)|varchar(4000)|nchar(4000)"},
    {kSqlWChar, u"char", 4'001, 8'002, 0,
     "char(4001)|char(4001)|char(4001)|longtext|nvarchar(max)"},
    {kSqlWChar, u"char", 10'485'761, 20'971'522, 0,
     "char(10485761)|char(10485761)|text|longtext|nvarchar(max)"},
    {kSqlBinary, u"binary", 256, 256, 0,
     "binary(256)|binary(256)|bytea|varbinary(256)|binary(256)"},
    {kSqlVarbinary, u"varbinary", 4'000, 4'000, 0,
     "varbinary(4000)|varbinary(4000)|bytea|varbinary(4000)|varbinary(4000)"},
    {kSqlVarbinary, u"varbinary", 4'001, 4'001, 0,
     "varbinary(4001)|varbinary(4001)|bytea|longblob|varbinary(4001)"},
    {kSqlVarbinary, u"varbinary", 8'000, 8'000, 0,
     "varbinary(8000)|varbinary(8000)|bytea|longblob|varbinary(8000)"},
    {kSqlVarbinary, u"varbinary", 8'001, 8'001, 0,
     "varbinary(8001)|varbinary(8001)|bytea|longblob|varbinary(max)"},
    {kSqlTypeTime, u"time", 10, 6, 1, "time(1)|time|time|time(1)|time"},
    {kSqlTypeTime, u"time", 16, 6, 7, "time(6)|time|time|time(6)|time"},
    {kSqlTypeTimestamp, u"timestamp", 23, 16, 3,
     "timestamp|timestamp|timestamp|datetime(3)|datetime2"},
    {kSqlGuid, u"uuid", 37, 16, 0, "char(36)|char(36)|uuid|char(36)|uniqueidentifier"},
};

TEST(SqlDialect, NamesTheTypesOfColumns) {
    for (const TypeCase& c : kTypes) {
        ColumnDefinition column(u"c", c.code, c.name, c.length);
        column.OctetLength = c.octets;
        column.Digits = c.digits;
        std::string types;
        for (const Dialect dialect : {Dialect::ANSI, Dialect::SQLite, Dialect::PostgreSQL,
                                      Dialect::MySQL, Dialect::SQLServer}) {
            if (!types.empty()) types += '|';
            types += ToUtf8(sql::SqlDialect::Of(dialect).TypeOf(column));
        }
        EXPECT_EQ(types, c.types) << ToUtf8(c.name) << c.length;
    }
}

TEST(SqlDialect, TakesDefaultsThatAreNumbersOrTexts) {
    struct Case {
        Dialect source;
        ColumnKind kind;
        const char16_t* spelling;
        const char16_t* value;  // null: none
    };
    using enum ColumnKind;
    const Case kCases[] = {
        {Dialect::SQLite, Text, u"it''s", u"it's"},
        {Dialect::SQLite, Text, u"", u""},
        {Dialect::SQLite, Text, u"NULL", nullptr},
        {Dialect::SQLite, Text, u"a'||'b", nullptr},
        {Dialect::SQLite, Text, u"datetime('now')", nullptr},
        {Dialect::SQLite, Timestamp, u"CURRENT_TIMESTAMP", nullptr},
        {Dialect::SQLite, Integer, u"1+2", nullptr},
        {Dialect::SQLite, Decimal, u"-1.5", u"-1.5"},
        {Dialect::PostgreSQL, Text, u"'o''k\\n'::text", u"o'k\\n"},
        {Dialect::PostgreSQL, Integer, u"'-7'::integer", u"-7"},
        {Dialect::PostgreSQL, Integer, u"nextval('t_z_seq'::regclass)", nullptr},
        {Dialect::PostgreSQL, Text, u"('a'::text || 'b'::text)", nullptr},
        {Dialect::PostgreSQL, Bit, u"true", u"true"},
        {Dialect::PostgreSQL, Binary, u"'\\x41'::bytea", nullptr},
        {Dialect::MySQL, Text, u"'a\\'b\\\\\\r''", nullptr},
        {Dialect::MySQL, Text, u"'a\\'b\\\\\\r'''", u"a'b\\\r'"},
        {Dialect::MySQL, Timestamp, u"current_timestamp()", nullptr},
        {Dialect::SQLServer, Text, u"(N'x')", u"x"},
        {Dialect::SQLServer, Integer, u"((7))", u"7"},
        {Dialect::SQLServer, Timestamp, u"(getdate())", nullptr},
        {Dialect::ANSI, Text, u"", nullptr},
        {Dialect::ANSI, Integer, u"'x'", nullptr},
    };
    for (const Case& c : kCases) {
        const std::optional<String> value = sql::DefaultValue(c.source, c.kind, c.spelling);
        const std::optional<String> expected =
            c.value == nullptr ? std::nullopt : std::optional<String>(c.value);
        EXPECT_EQ(value, expected) << ToUtf8(c.spelling);
    }
}

TEST(SqlDialect, TakesTheQuotesThatADriverTells) {
    const std::pair<const char16_t*, const char16_t*> kCases[] = {
        {u"`", u"`a``\"]`"},   {u"[", u"[a`\"]]]"},    {u"\"", u"\"a`\"\"]\""},
        {u"", u"\"a`\"\"]\""}, {u" ", u"\"a`\"\"]\""}, {u"<<", u"\"a`\"\"]\""},
    };
    for (const auto& [quotes, expected] : kCases) {
        String name;
        sql::SqlDialect::Of(sql::Dialect::ANSI).WithQuotes(quotes).AppendName(name, u"a`\"]");
        EXPECT_EQ(name, expected) << ToUtf8(quotes);
    }
}

TEST(SqlDialect, DividesNames) {
    const std::pair<const char16_t*, std::vector<String>> kCases[] = {
        {u"orders", {u"orders"}},
        {u"shop.dbo.[my.orders]", {u"shop", u"dbo", u"my.orders"}},
        {u"`a``b`.\"c\"\"d.\".[e]].f]", {u"a`b", u"c\"d.", u"e].f"}},
        {u"[a]b..\"", {u"[a]b", u"", u"\""}},
    };
    for (const auto& [name, plain] : kCases) {
        std::vector<String> pieces;
        for (const StringView piece : sql::PiecesOf(name)) pieces.push_back(sql::PlainName(piece));
        EXPECT_EQ(pieces, plain) << ToUtf8(name);
    }
}

}  // namespace
