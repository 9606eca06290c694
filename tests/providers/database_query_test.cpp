#include "providers/database_query.h"

#include <gtest/gtest.h>

#include "servers/postgres.h"
#include "support/fixed_clock.h"
#include "support/one_step.h"
#include "support/sqlite.h"

namespace {

using DataProviders::DatabaseQuery;
using testing_support::ColumnNames;
using testing_support::FetchAll;
using Texts = std::vector<std::string>;

class DatabaseQuerySource : public testing::Test {
protected:
    void SetUp() override {
        testing_support::RunInSqlite(folder_, "test.db",
                                     u"create table items as select 1 as id, 'žába' as name");
        testing_support::RunInSqlite(folder_, "test.db",
                                     u"create table \"two words\" as select 2 as x");
    }

    SectionSettings Source(const testing_support::Settings& settings) {
        return step_.With(Section::Source, settings);
    }
    String Connect() const { return testing_support::SqliteConnectString(folder_, "test.db"); }
    String File(std::string_view name) const { return folder_.Path(name); }

    // The rows of the source with these settings, or why there are none.
    Texts Rows(testing_support::Settings settings) {
        if (settings.empty() || settings[0].first != u"DSN")
            settings.insert(settings.begin(), {u"DSN", Connect()});
        DatabaseQuery source;
        RowSet rows;
        String error;
        if (!source.Open(error, Source(settings), rows)) return {"failed: " + ToUtf8(error)};
        Texts all = FetchAll(source, rows);
        EXPECT_TRUE(source.Close());
        return all;
    }

    testing_support::ScratchFolder folder_;
    testing_support::FixedClock clock_{{2026, 3, 5, 9, 7, 3}};
    testing_support::OneStep step_{clock_, "DateMacroFormat=YYYY-MM-DD\nTimeMacroFormat=HHMMSS\n"};
};

TEST_F(DatabaseQuerySource, TakesItsQueryFromTheFirstKeyThatHasOne) {
    folder_.Write("query.sql", "select 'file'");
    const struct {
        const char* name;
        testing_support::Settings settings;
        const char* row;
    } kCases[] = {
        {"query before all",
         {{u"Query", u"select 'query'"},
          {u"QueryFile", File("query.sql")},
          {u"TableName", u"items"}},
         "query"},
        {"file before table",
         {{u"QueryFile", File("query.sql")}, {u"TableName", u"items"}},
         "file"},
        {"empty query is none", {{u"Query", u""}, {u"QueryFile", File("query.sql")}}, "file"},
        {"one table before the other",
         {{u"TableName", u"items"}, {u"Table", u"nowhere"}},
         "1|žába"},
        {"the other", {{u"Table", u"items"}}, "1|žába"},
        {"table name verbatim", {{u"TableName", u"items where id = 1"}}, "1|žába"},
        {"outer quotes go", {{u"Query", u"\"select 'query'\""}}, "query"},
        {"own quotes of a name", {{u"Table", u"\"\"two words\"\""}}, "2"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Rows(c.settings), Texts{c.row});
    }
}

TEST_F(DatabaseQuerySource, SaysWhatIsMissing) {
    folder_.Write("blank.sql", " \t\r\n \r\n");
    folder_.Write("empty.sql", "");
    folder_.MakeFolder("folder");
    const std::string missing = ToUtf8(File("missing.sql"));
    const struct {
        const char* name;
        testing_support::Settings settings;
        std::string error;
    } kCases[] = {
        {"nothing",
         {{u"DSN", u""}, {u"Query", u"select 1"}},
         "The data source or connection string is not provided."},
        {"no query", {}, "The database query or table name is not provided."},
        {"no such file",
         {{u"QueryFile", File("missing.sql")}},
         "The query file '" + missing + "' does not exist or inaccessible."},
        {"blank file",
         {{u"QueryFile", File("blank.sql")}},
         "The query file '" + ToUtf8(File("blank.sql")) + "' is empty"},
        {"empty file",
         {{u"QueryFile", File("empty.sql")}, {u"EmptyScriptIsNotBug", u"yes"}},
         "The query file '" + ToUtf8(File("empty.sql")) + "' is empty"},
        {"blank file that is no bug",
         {{u"QueryFile", File("blank.sql")}, {u"EmptyScriptIsNotBug", u"True"}},
         "ODBCDatabase::Query the empty query was passed.\r\n"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Rows(c.settings), Texts{"failed: " + c.error});
    }
    const std::string folder_error =
        Rows({{u"QueryFile", File("folder")}}).at(0).substr(sizeof("failed: ") - 1);
    const std::string head = "Could not load query file '" + ToUtf8(File("folder")) +
                             "': Could not open file for reading: ";
    EXPECT_EQ(folder_error.substr(0, head.size()), head);
    EXPECT_GT(folder_error.size(), head.size());
}

TEST_F(DatabaseQuerySource, PutsQueryBehindFailureOfDatabase) {
    const std::string failed = Rows({{u"Query", u"select '$TIME$' from nowhere"}}).at(0);
    EXPECT_TRUE(failed.starts_with("failed: ODBCDatabase::Query execution error: ")) << failed;
    EXPECT_TRUE(failed.ends_with("\r\nselect '090703' from nowhere")) << failed;

    const std::string unconnected =
        Rows({{u"DSN", u"no such source"}, {u"Query", u"select 1"}, {u"Login", u"me"}}).at(0);
    EXPECT_TRUE(
        unconnected.starts_with("failed: ODBCDatabase::Open. Connection to "
                                "'no such source' for 'me' failed: '"))
        << unconnected;
    EXPECT_TRUE(unconnected.ends_with("'")) << unconnected;
}

TEST_F(DatabaseQuerySource, ReadsQueryFiles) {
    const struct {
        const char* name;
        std::string bytes;
        std::string row;
    } kCases[] = {
        {"trimmed at both ends", "\r\n\t select 'a  b'\t\n \r\n", "a  b"},
        {"line ends inside", "select\r\n\r\n1,\n'two'\n", "1|two"},
        {"UTF-8", "select 'ž€'", "ž€"},
        {"UTF-8 with a mark", "\xEF\xBB\xBFselect 'ž'", "ž"},
        {"no UTF-8: a character a byte", "select 'z\xE9'", "z\xC3\xA9"},
        {"UTF-16 little-endian",
         std::string("\xFF\xFE"
                     "1\0 \0",
                     6)
             .replace(2, 4,
                      [] {
                          std::string text;
                          for (const char c : std::string("select '")) text += {c, '\0'};
                          text += "\x7E\x01";
                          text += {'\'', '\0'};
                          return text;
                      }()),
         "ž"},
        {"macros", "select '$DATE$ $WHO$'", "2026-03-05 me"},
    };
    step_.Job().ParseCommandLine({u"$WHO$=me"});
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        folder_.Write("query.sql", c.bytes);
        EXPECT_EQ(Rows({{u"QueryFile", File("query.sql")}}), Texts{c.row});
    }
}

TEST_F(DatabaseQuerySource, ResolvesMacros) {
    step_.Job().ParseCommandLine({u"$FILE$=" + testing_support::DriverPath(File("test.db")),
                                  u"$COLUMN$=name", u"$DATA$=items"});
    const String connect = u"Driver=SQLite3;Database=$FILE$";
    EXPECT_EQ(Rows({{u"DSN", connect}, {u"Query", u"select $COLUMN$, '$DATE$' from items"}}),
              Texts{"žába|2026-03-05"});
    EXPECT_EQ(
        Rows({{u"DSN", u""}, {u"ConnectString", connect}, {u"Query", u"select id from $DATA$"}}),
        Texts{"1"});
    EXPECT_EQ(Rows({{u"TableName", u"$DATA$"}}), Texts{"1|žába"});
}

TEST_F(DatabaseQuerySource, PrefersDataSourceToConnectString) {
    EXPECT_EQ(Rows({{u"DSN", Connect()},
                    {u"ConnectString", u"Driver=no such driver"},
                    {u"Query", u"select 1"}}),
              Texts{"1"});
}

TEST_F(DatabaseQuerySource, TellsItsTableToTheStep) {
    step_.Job().ParseCommandLine({u"$PLURAL$=items"});
    EXPECT_EQ(Rows({{u"TableName", u"$PLURAL$"}}), Texts{"1|žába"});
    String name = u"out_$TABLE$.txt";
    step_.Job().ResolveAllMacros(name);
    EXPECT_EQ(name, u"out_items.txt");
}

TEST_F(DatabaseQuerySource, LogsIn) {
    SKIP_WITHOUT_POSTGRES();
    String attributes = testing_support::PostgresConnectString();
    attributes.erase(attributes.find(u"Uid="));
    attributes.replace(attributes.find(u"Server="), 7, u"Servername=");  // its name in that file
    std::string lines = ToUtf8(attributes);
    for (char& c : lines)
        if (c == ';') c = '\n';
    folder_.Write("odbc.ini", "[Quillon Login]\n" + lines);
    if (!testing_support::SetDriverEnvironment("ODBCINI", folder_.Path("odbc.ini")))
        GTEST_SKIP() << "the driver manager's files are fixed on this system";
    const testing_support::Settings base{{u"DSN", u"Quillon Login"},
                                         {u"Query", u"select current_user"}};
    for (const char16_t* key : {u"Login", u"User"}) {
        SCOPED_TRACE(ToUtf8(key));
        testing_support::Settings settings = base;
        settings.insert(settings.end(), {{key, u"postgres"}, {u"Password", u"any"}});
        if (key == StringView(u"Login")) settings.push_back({u"User", u"nobody here"});
        EXPECT_EQ(Rows(settings), Texts{"postgres"});
    }
}

TEST_F(DatabaseQuerySource, DeliversAllResultSets) {
    SKIP_WITHOUT_POSTGRES();
    DatabaseQuery source;
    RowSet rows;
    String error;
    ASSERT_TRUE(
        source.Open(error,
                    Source({{u"ConnectString", testing_support::PostgresConnectString()},
                            {u"Query", u"select 1 as a; select 2 as b, 3 as c; select 4 as d"}}),
                    rows))
        << ToUtf8(error);
    EXPECT_EQ(FetchAll(source, rows), Texts{"1"});
    ASSERT_TRUE(source.HasMoreData(error, rows));
    EXPECT_EQ(ColumnNames(rows), "b|c");
    EXPECT_EQ(FetchAll(source, rows), Texts{"2|3"});
    ASSERT_TRUE(source.HasMoreData(error, rows));
    EXPECT_EQ(FetchAll(source, rows), Texts{"4"}) << "values of a wider result set are gone";
    EXPECT_FALSE(source.HasMoreData(error, rows));
    EXPECT_EQ(error, u"");
}

TEST_F(DatabaseQuerySource, OpensAgainAndDoesNothingUnopened) {
    DatabaseQuery source;
    RowSet rows;
    String error;
    EXPECT_FALSE(source.Fetch(error, rows, false));
    EXPECT_FALSE(source.HasMoreData(error, rows));
    EXPECT_FALSE(source.Close());
    EXPECT_EQ(error, u"");
    EXPECT_TRUE(source.CanReopen());
    const SectionSettings settings = Source({{u"DSN", Connect()}, {u"Table", u"items"}});
    for (int time = 1; time <= 2; ++time) {
        SCOPED_TRACE(time);
        ASSERT_TRUE(source.Open(error, settings, rows)) << ToUtf8(error);
        EXPECT_EQ(ColumnNames(rows), "id|name");
        EXPECT_EQ(FetchAll(source, rows, true), Texts{"1|žába"});
        EXPECT_TRUE(source.Close());
    }
}

}  // namespace
