#include "consumers/sql_statement.h"

#include "support/target_fixture.h"

namespace {

using Case = std::pair<const char16_t*, const char*>;

TEST(SqlStatement, QuotesTheNamesOfAnInsert) {
    std::vector<ColumnDefinition> columns(3);
    columns[0].Name = u"a\"b";
    columns[1].Included = false;
    columns[2].Name = u"[c]";
    // clang-format off
    const Case kCases[] = {
        {u"it's mine]", "\"it's mine]\""}, {u"dbo.Orders", "dbo.Orders"}, {u"a\"", "a\""},
        {u"[my orders]", "[my orders]"}, {u"\"my orders\"", "\"my orders\""},
    };
    // clang-format on
    for (const auto& [table, quoted] : kCases) {
        EXPECT_EQ(ToUtf8(sql::InsertPrefix(table, columns, true)),
                  std::string("insert into ") + quoted + "(\"a\"b\",\"[c]\") values");
    }
}

TEST(SqlStatement, ListsTheValuesOfARow) {
    std::vector<ColumnDefinition> columns(3);
    columns[0].LiteralPrefix = u"N'";
    columns[0].LiteralSuffix = u"'";
    columns[2].LiteralPrefix = u"0x";
    // clang-format off
    const Case kCases[] = {
        {u"a|1|F", " (N'a',1,0xF)"}, {u"'O''|it's|", " (N'''O''''',it''s,0x)"},
        {u"~|~|~", " (NULL,NULL,NULL)"}, {u"-|-|F", " (0xF)"},
    };
    // clang-format on
    for (const auto& [row, list] : kCases) {
        String error;
        String statement = u"values";
        EXPECT_TRUE(sql::AppendValueList(error, statement, columns, testing_support::RowOf(row)));
        EXPECT_EQ(ToUtf8(statement), std::string("values") + list);
    }
}

TEST(SqlStatement, DividesTableNames) {
    // The schema and the table, with "|" between them.
    // clang-format off
    const Case kCases[] = {
        {u"Orders", "|Orders"}, {u".Orders", "|Orders"}, {u"shop.dbo.Orders", "shop.dbo|Orders"},
        {u"[a.b].c", "a.b|c"}, {u"dbo.[My.Orders]", "dbo|My.Orders"}, {u"[a]b", "|[a]b"}, {u"[a]b]", "|[a]b]"}, {u"a].b", "a]|b"},
        {u"\"a.b\".\"c.d\"", "a.b|c.d"}, {u"[a\".b].\"[c.d\"", "a\".b|[c.d"}, {u"\"say \"\"a.b\"\"\"", "|say \"\"a.b\"\""},
    };
    // clang-format on
    for (const auto& [name, divided] : kCases) {
        const sql::QualifiedName parts = sql::DivideName(name);
        EXPECT_EQ(ToUtf8(parts.schema) + "|" + ToUtf8(parts.table), divided);
    }
}

}  // namespace
