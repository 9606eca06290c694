#include "storages/odbc_database.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <string>
#include <vector>

#include "base/utf8.h"
#include "servers/postgres.h"
#include "support/one_step.h"
#include "support/sqlite.h"

namespace {

using DataStorages::CatalogColumn;
using DataStorages::ODBCDatabase;
using DataStorages::TableEntry;
using DataStorages::TableKind;
using testing_support::ColumnNames;
using testing_support::FetchAll;
using testing_support::RowText;
using Texts = std::vector<std::string>;

// What the driver manager and the driver say: message, SQLSTATE, native error number.
void ExpectDiagnostic(std::string_view diagnostic, std::string_view state = "") {
    const std::size_t number = diagnostic.rfind(',') + 1;
    ASSERT_GT(number, 7u) << diagnostic;  // no room for a message, or no comma at all
    EXPECT_NE(number, diagnostic.size()) << diagnostic;
    EXPECT_EQ(diagnostic.find_first_not_of("-0123456789", number), std::string_view::npos)
        << diagnostic;
    const std::string_view told = diagnostic.substr(number - 6, 5);
    EXPECT_EQ(diagnostic[number - 7], ',') << diagnostic;
    EXPECT_EQ(told.find_first_not_of("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ"),
              std::string_view::npos)
        << diagnostic;
    if (!state.empty()) {
        EXPECT_EQ(told, state) << diagnostic;
    }
}

// A message that ends in a diagnostic, with `tail` behind it.
void ExpectMessage(const String& error, const std::string& head, const std::string& tail = "",
                   std::string_view state = "") {
    const std::string text = ToUtf8(error);
    ASSERT_EQ(text.substr(0, head.size()), head);
    ASSERT_GT(text.size(), head.size() + tail.size());
    ASSERT_EQ(text.substr(text.size() - tail.size()), tail);
    ExpectDiagnostic(text.substr(head.size(), text.size() - head.size() - tail.size()), state);
}

// A connected database, with the row set of one step. Destruction closes it.
class Session {
public:
    explicit Session(const String& connect_string) {
        String error;
        EXPECT_TRUE(database.Open(error, connect_string, {}, {})) << ToUtf8(error);
    }
    ~Session() { database.Close(); }

    bool Query(const String& statement) {
        String error;
        const bool done = database.Query(error, statement, rows);
        EXPECT_TRUE(done) << ToUtf8(error);
        return done;
    }
    void Execute(const String& statement) {
        String error;
        EXPECT_TRUE(database.ExecNonQuery(error, statement)) << ToUtf8(error);
    }
    // All rows of the first result set of a statement.
    Texts Ask(const String& statement) {
        rows = {};
        if (!Query(statement)) return {};
        Texts all = FetchAll(database, rows);
        EXPECT_TRUE(database.CloseQuery());
        return all;
    }
    // Reads a single value.
    String Value(const String& statement) {
        String error;
        rows = {};
        if (!Query(statement) || !database.Fetch(error, rows, false)) {
            ADD_FAILURE() << "no row " << ToUtf8(error);
            return {};
        }
        database.CloseQuery();
        return rows.Row.at(0).Text;
    }
    Texts TableNames(TableKind kind) {
        String error;
        std::vector<TableEntry> entries(1);  // to be emptied
        EXPECT_TRUE(database.Tables(error, entries, kind)) << ToUtf8(error);
        Texts names;
        for (const TableEntry& entry : entries) names.push_back(ToUtf8(entry.Name));
        std::sort(names.begin(), names.end());
        return names;
    }
    // "table.column" for each column that the catalogue gives.
    Texts ColumnsOf(const String& schema, const String& table) {
        String error;
        std::vector<CatalogColumn> columns(1);
        EXPECT_TRUE(database.Columns(error, schema, table, columns)) << ToUtf8(error);
        Texts names;
        for (const CatalogColumn& column : columns)
            names.push_back(ToUtf8(column.Table + u"." + column.Column));
        return names;
    }

    ODBCDatabase database;
    RowSet rows;
};

class OdbcDatabase : public testing::Test {
protected:
    String Sqlite() const { return testing_support::SqliteConnectString(folder_, "test.db"); }

    testing_support::ScratchFolder folder_;
};

// ---- Connecting ----

TEST_F(OdbcDatabase, SaysWhyItCouldNotConnect) {
    const struct {
        const char* name;
        String source;
        std::string head;
    } kCases[] = {
        {"unknown data source", u"no such source",
         "ODBCDatabase::Open. Connection to 'no such source' for 'me' failed: '"},
        {"the word in lower case is a data source name", u"driver=SQLite3;Database=x",
         "ODBCDatabase::Open. Connection to 'driver=SQLite3;Database=x' for 'me' failed: '"},
        {"unknown driver", u"Driver=no such driver;",
         "ODBCDatabase::Open. Connection with string 'Driver=no such driver;' failed: '"},
        {"the word anywhere makes a connect string", u"Server=Sales;Driver={X}",
         "ODBCDatabase::Open. Connection with string 'Server=Sales;Driver={X}' failed: '"},
        {"the driver's own refusal", u"Driver=PostgreSQL Unicode;Server=127.0.0.1;Port=1;",
         "ODBCDatabase::Open. Connection with string 'Driver=PostgreSQL "
         "Unicode;Server=127.0.0.1;Port=1;' failed: '"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        ODBCDatabase database;
        RowSet rows;
        String error;
        EXPECT_FALSE(database.Open(error, c.source, u"me", u"secret"));
        ExpectMessage(error, c.head, "'");
        ExpectDiagnostic(ToUtf8(database.LastError()));
        EXPECT_FALSE(database.Query(error, u"select 1", rows));
        EXPECT_EQ(error, u"ODBCDatabase::Query the database connection is not established yet.");
        database.Close();
    }
}

TEST_F(OdbcDatabase, ConnectsToDataSourceWithLogin) {
    SKIP_WITHOUT_POSTGRES();
    String attributes = testing_support::PostgresConnectString();
    attributes.erase(attributes.find(u"Uid="));
    attributes.replace(attributes.find(u"Server="), 7, u"Servername=");  // its name in that file
    std::replace(attributes.begin(), attributes.end(), u';', u'\n');
    folder_.Write("odbc.ini", "[Quillon Test]\n" + ToUtf8(attributes));
    if (!testing_support::SetDriverEnvironment("ODBCINI", folder_.Path("odbc.ini")))
        GTEST_SKIP() << "the driver manager's files are fixed on this system";
    ODBCDatabase database;
    RowSet rows;
    String error;
    ASSERT_TRUE(database.Open(error, u"Quillon Test", u"postgres", u"any")) << ToUtf8(error);
    ASSERT_TRUE(database.Query(error, u"select current_user", rows)) << ToUtf8(error);
    EXPECT_EQ(FetchAll(database, rows), Texts{"postgres"});
    database.Close();
    EXPECT_FALSE(database.Open(error, u"Quillon Test", u"nobody here", u""));
    ExpectMessage(
        error, "ODBCDatabase::Open. Connection to 'Quillon Test' for 'nobody here' failed: '", "'");
    database.Close();
}

TEST_F(OdbcDatabase, WorksOnlyWhileConnected) {
    ODBCDatabase database;
    RowSet rows;
    std::vector<TableEntry> tables;
    std::vector<CatalogColumn> columns;
    for (const char* when : {"before Open", "after Close"}) {
        SCOPED_TRACE(when);
        String error;
        EXPECT_FALSE(database.Query(error, u"select 1", rows));
        EXPECT_EQ(error, u"ODBCDatabase::Query the database connection is not established yet.");
        EXPECT_FALSE(database.ExecNonQuery(error, u"select 1"));
        EXPECT_EQ(error, u"ODBCDatabase::Query the database connection is not established yet.");
        EXPECT_FALSE(database.Tables(error, tables, TableKind::Tables));
        EXPECT_EQ(error, u"ODBCDatabase::Tables. The database connection is not established yet.");
        EXPECT_FALSE(database.Columns(error, u"", u"t", columns));
        EXPECT_EQ(error, u"The database connection is not established yet.");
        EXPECT_FALSE(database.HasMoreData(error, rows));
        EXPECT_EQ(error, u"ODBCDatabase::HasMoreData no active statement");
        error.clear();
        EXPECT_FALSE(database.Fetch(error, rows, false));
        EXPECT_EQ(error, u"");

        ASSERT_TRUE(database.Open(error, Sqlite(), {}, {})) << ToUtf8(error);
        ASSERT_TRUE(database.Query(error, u"select 1", rows)) << ToUtf8(error);
        EXPECT_TRUE(database.Close());  // with the statement still open
    }
}

// PostgreSQL's driver sets the character type of the process to that of its environment. In one
// that is not UTF-8 the program's own choice must outlive that, or the driver manager spoils the
// text of the next database.
TEST_F(OdbcDatabase, KeepsTheLocaleOfTheProcess) {
    SKIP_WITHOUT_POSTGRES();
    if (!testing_support::SetDriverEnvironment("LC_ALL", u"C"))
        GTEST_SKIP() << "the drivers' locale is fixed on this system";
    platform::PrepareProcess();
    const std::string before = std::setlocale(LC_CTYPE, nullptr);
    const Session session(testing_support::PostgresConnectString());
    EXPECT_EQ(std::setlocale(LC_CTYPE, nullptr), before);
    testing_support::SetDriverEnvironment("LC_ALL", u"");
    platform::PrepareProcess();
}

// ---- Statements ----

TEST_F(OdbcDatabase, FetchesOnlyAfterQuery) {
    Session session(Sqlite());
    String error;
    EXPECT_FALSE(session.database.Fetch(error, session.rows, false));
    EXPECT_EQ(error, u"");
    EXPECT_FALSE(session.database.HasMoreData(error, session.rows));
    EXPECT_EQ(error, u"ODBCDatabase::HasMoreData no active statement");
    session.Query(u"select 1 union select 2");
    error.clear();
    EXPECT_TRUE(session.database.Fetch(error, session.rows, false));
    EXPECT_TRUE(session.database.CloseQuery());
    EXPECT_FALSE(session.database.Fetch(error, session.rows, false));
    EXPECT_EQ(error, u"");
}

TEST_F(OdbcDatabase, SaysWhyStatementFailed) {
    Texts sources{ToUtf8(Sqlite())};
    if (!testing_support::PostgresConnectString().empty())
        sources.push_back(ToUtf8(testing_support::PostgresConnectString()));
    for (const std::string& source : sources) {
        SCOPED_TRACE(source);
        String connect_string;
        ASSERT_TRUE(FromUtf8(source, connect_string));
        Session session(connect_string);
        String error;
        EXPECT_FALSE(session.database.Query(error, u"", session.rows));
        EXPECT_EQ(error, u"ODBCDatabase::Query the empty query was passed.");
        EXPECT_FALSE(session.database.ExecNonQuery(error, u""));
        EXPECT_EQ(error, u"ODBCDatabase::Query the empty query was passed.");

        EXPECT_FALSE(session.database.Query(error, u"select * from \"žádná\"", session.rows));
        ExpectMessage(error, "ODBCDatabase::Query execution error: ");
        EXPECT_NE(error.find(u"žádná"), String::npos) << ToUtf8(error);
        error.clear();
        EXPECT_FALSE(session.database.Fetch(error, session.rows, false));
        EXPECT_EQ(error, u"");
        EXPECT_TRUE(session.database.CloseQuery());
        EXPECT_EQ(session.Ask(u"select 'goes on'"), Texts{"goes on"});

        // A statement that was left open does not stand in the way of the next one.
        EXPECT_FALSE(session.database.Query(error, u"selec 1", session.rows));
        EXPECT_EQ(session.Ask(u"select 'goes on'"), Texts{"goes on"});

        EXPECT_FALSE(session.database.ExecNonQuery(error, u"drop table nowhere"));
        ExpectMessage(error, "ODBCDatabase::ExecNonQuery execution error: ");
        EXPECT_TRUE(session.database.CloseQuery());
        EXPECT_EQ(session.Ask(u"select 'goes on'"), Texts{"goes on"});
    }
}

TEST_F(OdbcDatabase, KeepsDiagnosticWithinItsRoom) {
    SKIP_WITHOUT_POSTGRES();
    Session session(testing_support::PostgresConnectString());
    String error;
    EXPECT_FALSE(session.database.ExecNonQuery(
        error, u"do $$ begin raise exception '%', repeat('long ', 1000); end $$"));
    ExpectMessage(error, "ODBCDatabase::ExecNonQuery execution error: ", "", "P0001");
    EXPECT_LE(session.database.LastError().size(), 543u);
    EXPECT_GT(session.database.LastError().size(), 500u);
}

TEST_F(OdbcDatabase, ExecutesStatementsWithoutRows) {
    Session session(Sqlite());
    session.Execute(u"create table t(a)");
    session.Execute(u"insert into t values (1), (2)");
    session.Execute(u"select * from t");  // its result is discarded
    session.Execute(u"delete from t where a > 2");
    EXPECT_TRUE(session.Query(u"delete from t where a > 2")) << "to change no row is no failure";
    EXPECT_EQ(session.Ask(u"select count(*) from t"), Texts{"2"});
}

TEST_F(OdbcDatabase, QueryThatReturnsNoColumns) {
    Session session(Sqlite());
    session.rows.Columns.resize(3);
    ASSERT_TRUE(session.Query(u"create table t(a)"));
    EXPECT_TRUE(session.rows.Columns.empty());
    EXPECT_EQ(session.database.ColumnCount(), 0);
    String error;
    EXPECT_FALSE(session.database.Fetch(error, session.rows, true));
    EXPECT_FALSE(session.database.HasMoreData(error, session.rows));
    EXPECT_EQ(error, u"");
    EXPECT_FALSE(session.database.ReadingFailed());
    session.database.CloseQuery();
    EXPECT_EQ(session.Ask(u"select count(*) from t"), Texts{"0"});
}

TEST_F(OdbcDatabase, FailureBetweenRowsEndsTheDataWithoutText) {
    Session session(Sqlite() + u"StepAPI=1;");
    session.Query(u"select abs(column1) from (values (1), (2), (-9223372036854775807 - 1), (4))");
    EXPECT_EQ(FetchAll(session.database, session.rows), (Texts{"1", "2"}));
    EXPECT_TRUE(session.database.ReadingFailed());
    ExpectDiagnostic(ToUtf8(session.database.LastError()));
    session.database.CloseQuery();
    EXPECT_EQ(session.Ask(u"select 'goes on'"), Texts{"goes on"});
}

// ---- Values ----

TEST_F(OdbcDatabase, TellsNullFromEmptyText) {
    Session session(Sqlite());
    EXPECT_EQ(session.Ask(u"select null, '', 'null', 1, 1.5"), Texts{"<null>||null|1|1.5"});
    session.rows.Row = {{true, true, u"old"}, {false, true, u"old"}};
    session.Query(u"select '', null");
    EXPECT_EQ(FetchAll(session.database, session.rows), Texts{"|<null>"});
    EXPECT_EQ(session.rows.Row[1].Text, u"") << "the text of a value that is now NULL";
}

TEST_F(OdbcDatabase, CarriesTextOfAllLanguages) {
    Session session(Sqlite());
    session.Execute(u"create table \"žluťoučký kůň\"(\"日本語\" text)");
    session.Execute(u"insert into \"žluťoučký kůň\" values ('Ωμέγα ₤')");
    EXPECT_EQ(session.Ask(u"select \"日本語\" from \"žluťoučký kůň\" where \"日本語\" like 'Ω%'"),
              Texts{"Ωμέγα ₤"});
    EXPECT_EQ(ColumnNames(session.rows), "日本語");
    EXPECT_EQ(session.Value(u"select 'a' || char(128512) || 'b'"),
              u"a\xD83D\xDE00"
              u"b");
    EXPECT_EQ(session.TableNames(TableKind::Tables), Texts{"žluťoučký kůň"});
    EXPECT_EQ(session.ColumnsOf(u"", u"žluťoučký kůň"), Texts{"žluťoučký kůň.日本語"});
}

TEST_F(OdbcDatabase, CarriesTextBeyondTheBasicPlaneInStatements) {
    SKIP_WITHOUT_POSTGRES();
    Session session(testing_support::PostgresConnectString());
    EXPECT_EQ(session.Ask(u"select '😀' || 'ž', null::text, '', length('😀')"),
              Texts{"😀ž|<null>||1"});
    session.Query(u"select '😀' as \"s😀l\"");
    EXPECT_EQ(ColumnNames(session.rows), "s😀l");
}

TEST_F(OdbcDatabase, ReadsLongValuesUpToItsBuffer) {
    Session session(Sqlite());
    const auto text = [](std::size_t characters) {
        return u"select replace(hex(zeroblob(" +
               [](std::string number) {
                   return String(number.begin(), number.end());
               }(std::to_string((characters + 1) / 2)) +
               u")), '00', 'ab')";
    };
    constexpr std::size_t kRoom = 16'777'216 / 2 - 1;  // one unit ends the text in the buffer
    EXPECT_TRUE(session.Value(text(1 << 20)) == [] {
        String expected;
        for (int i = 0; i < (1 << 19); ++i) expected += u"ab";
        return expected;
    }());
    EXPECT_EQ(session.Value(u"select substr(a, 2) from (" + text(kRoom + 1) + u" as a)").size(),
              kRoom);

    session.Query(u"select a || a, 'next' from (" + text(9'000'000) + u" as a)");
    String error;
    ASSERT_TRUE(session.database.Fetch(error, session.rows, true)) << ToUtf8(error);
    EXPECT_EQ(session.rows.Row[0].Text.size(), kRoom);
    EXPECT_EQ(session.rows.Row[0].Text.substr(kRoom - 3), u"aba");
    EXPECT_EQ(session.rows.Columns[0].MaxWidth, kRoom);
    EXPECT_EQ(session.rows.Row[1].Text, u"next");
}

TEST_F(OdbcDatabase, ReadsLongValuesFromServer) {
    SKIP_WITHOUT_POSTGRES();
    Session session(testing_support::PostgresConnectString());
    const String value = session.Value(u"select repeat('žy', 524288) || '!'");
    EXPECT_EQ(value.size(), 1048577u);
    EXPECT_EQ(value.substr(value.size() - 3), u"žy!");
}

TEST_F(OdbcDatabase, TracksWidthsOnlyWhenAsked) {
    Session session(Sqlite());
    const String query =
        u"select 'x' as long_name, 'wider' as w, null as n union all select 'y', '123', null";
    session.Query(query);
    const auto widths = [&] {
        std::vector<std::uint64_t> all;
        for (const ColumnDefinition& column : session.rows.Columns) all.push_back(column.MaxWidth);
        return all;
    };
    using Widths = std::vector<std::uint64_t>;
    EXPECT_EQ(FetchAll(session.database, session.rows).size(), 2u);
    EXPECT_EQ(widths(), (Widths{9, 1, 1}));
    session.database.CloseQuery();
    session.Query(query);
    EXPECT_EQ(FetchAll(session.database, session.rows, true).size(), 2u);
    EXPECT_EQ(widths(), (Widths{9, 5, 1}));
    session.database.CloseQuery();
    session.Query(query);
    EXPECT_EQ(widths(), (Widths{9, 1, 1})) << "describing starts again";

    session.rows.Columns.resize(1);
    String error;
    EXPECT_FALSE(session.database.Fetch(error, session.rows, true));
    EXPECT_EQ(error, u"ODBCDatabase::Fetch. Wrong 'definitions' array size.");
    error.clear();
    EXPECT_TRUE(session.database.Fetch(error, session.rows, false));
}

// ---- Columns of a result ----

TEST_F(OdbcDatabase, DescribesColumnsOfServer) {
    SKIP_WITHOUT_POSTGRES();
    Session session(testing_support::PostgresConnectString());
    session.Execute(
        u"create temp table described(id serial, name varchar(20) not null, born date, "
        u"price numeric(10,2), note text, at timestamp)");
    session.Query(u"select * from described");
    const struct {
        const char* name;
        std::int32_t type;
        const char* type_name;
        bool nullable;
        bool auto_unique;
        const char* mark;
    } kColumns[] = {
        {"id", 4, "serial", false, true, ""},
        {"name", -9, "varchar", false, false, "'"},
        {"born", 9, "date", true, false, "'"},
        {"price", 2, "numeric", true, false, ""},
        {"note", -10, "text", true, false, "'"},
        {"at", 9, "timestamp without time zone", true, false, "'"},
    };
    ASSERT_EQ(session.rows.Columns.size(), std::size(kColumns));
    EXPECT_EQ(session.database.ColumnCount(), 6);
    for (std::size_t i = 0; i < std::size(kColumns); ++i) {
        SCOPED_TRACE(kColumns[i].name);
        const ColumnDefinition& column = session.rows.Columns[i];
        EXPECT_EQ(ToUtf8(column.Name), kColumns[i].name);
        EXPECT_EQ(column.TableName, u"described");
        EXPECT_EQ(column.Qualifier, u"");
        EXPECT_EQ(column.DataType, kColumns[i].type);
        EXPECT_EQ(ToUtf8(column.TypeName), kColumns[i].type_name);
        EXPECT_EQ(column.Nullable, kColumns[i].nullable);
        EXPECT_EQ(column.AutoUnique, kColumns[i].auto_unique);
        EXPECT_EQ(ToUtf8(column.LiteralPrefix), kColumns[i].mark);
        EXPECT_EQ(ToUtf8(column.LiteralSuffix), kColumns[i].mark);
        EXPECT_TRUE(column.Included);
        EXPECT_EQ(column.MaxWidth, column.Name.size());
    }
    EXPECT_EQ(session.rows.Columns[1].Length, 20);
    EXPECT_EQ(session.rows.Columns[1].DisplaySize, 20);
    EXPECT_EQ(session.rows.Columns[3].Length, 10);
}

TEST_F(OdbcDatabase, DescribesColumnsOfEmbeddedDatabase) {
    Session session(Sqlite());
    session.Execute(u"create table t(id integer not null, name varchar(20), born date, x blob)");
    session.Query(u"select * from t");
    ASSERT_EQ(ColumnNames(session.rows), "id|name|born|x");
    const auto& columns = session.rows.Columns;
    EXPECT_EQ(columns[0].DataType, 4);
    EXPECT_EQ(columns[0].TypeName, u"INTEGER");
    EXPECT_EQ(columns[0].TableName, u"t");
    EXPECT_EQ(columns[1].Length, 20);
    EXPECT_EQ(columns[2].DataType, 91)
        << "what this driver says, although it is not the verbose code";
    // Nor has it literal marks to tell.
    const char16_t* const kMarks[] = {u"", u"'", u"'", u"'"};
    for (std::size_t i = 0; i < columns.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(columns[i].LiteralPrefix, kMarks[i]);
        EXPECT_EQ(columns[i].LiteralSuffix, kMarks[i]);
    }
    session.database.CloseQuery();

    // More columns than before, then fewer: nothing stays behind but the room of the row.
    EXPECT_EQ(session.Ask(u"select 1, 2, 3, 4, 5"), Texts{"1|2|3|4|5"});
    session.Query(u"select 6 as six");
    EXPECT_EQ(ColumnNames(session.rows), "six");
    EXPECT_EQ(FetchAll(session.database, session.rows), Texts{"6|2|3|4|5"});
}

TEST_F(OdbcDatabase, MovesThroughResultSets) {
    SKIP_WITHOUT_POSTGRES();
    Session session(testing_support::PostgresConnectString());
    session.Query(
        u"select 1 as a, 2 as b; select 'x' as only; "
        u"create temp table made(a integer); select 3 as c where false");
    String error;
    EXPECT_EQ(ColumnNames(session.rows), "a|b");
    EXPECT_EQ(FetchAll(session.database, session.rows), Texts{"1|2"});
    ASSERT_TRUE(session.database.HasMoreData(error, session.rows));
    EXPECT_EQ(ColumnNames(session.rows), "only");
    EXPECT_EQ(session.database.ColumnCount(), 1);
    EXPECT_EQ(FetchAll(session.database, session.rows), Texts{"x|2"});
    ASSERT_TRUE(session.database.HasMoreData(error, session.rows)) << "a statement without rows";
    EXPECT_EQ(ColumnNames(session.rows), "");
    EXPECT_EQ(FetchAll(session.database, session.rows), Texts{});
    ASSERT_TRUE(session.database.HasMoreData(error, session.rows));
    EXPECT_EQ(ColumnNames(session.rows), "c");
    EXPECT_EQ(FetchAll(session.database, session.rows), Texts{});
    EXPECT_FALSE(session.database.HasMoreData(error, session.rows));
    EXPECT_EQ(error, u"");
}

TEST_F(OdbcDatabase, OneResultSetIsFollowedByNone) {
    Session session(Sqlite());
    session.Query(u"select 1");
    String error;
    EXPECT_EQ(FetchAll(session.database, session.rows), Texts{"1"});
    EXPECT_FALSE(session.database.ReadingFailed());
    EXPECT_FALSE(session.database.HasMoreData(error, session.rows));
    EXPECT_FALSE(session.database.ReadingFailed());
    EXPECT_EQ(error, u"");
}

// ---- Catalogue ----

TEST_F(OdbcDatabase, ListsTablesAndTheirColumnsByExactName) {
    Session session(Sqlite());
    for (const char16_t* table :
         {u"a_b", u"aXb", u"with blank", u"it''s", u"100%", u"1000", u"back\\slash", u"Příliš"}) {
        String name = table;
        if (const std::size_t twice = name.find(u"''"); twice != String::npos) name.erase(twice, 1);
        session.Execute(u"create table \"" + name + u"\"(first_" + (name[0] == u'a' ? name : u"") +
                        u" integer not null default 7, second varchar(9))");
    }
    session.Execute(u"create view \"a view\" as select 1 as one");
    EXPECT_EQ(session.TableNames(TableKind::Tables),
              (Texts{"100%", "1000", "Příliš", "aXb", "a_b", "back\\slash", "it's", "with blank"}));
    EXPECT_EQ(session.TableNames(TableKind::Views), Texts{"a view"});
    EXPECT_EQ(session.ColumnsOf(u"", u"a_b"), (Texts{"a_b.first_a_b", "a_b.second"}));
    for (const char16_t* table :
         {u"with blank", u"it's", u"100%", u"1000", u"back\\slash", u"Příliš"}) {
        const std::string name = ToUtf8(table);
        EXPECT_EQ(session.ColumnsOf(u"", table), (Texts{name + ".first_", name + ".second"}));
    }
    EXPECT_EQ(session.ColumnsOf(u"", u"a view"), Texts{"a view.one"});
    EXPECT_EQ(session.ColumnsOf(u"", u"nothing"), Texts{});
}

TEST_F(OdbcDatabase, ListsTablesAndColumnsOfServer) {
    SKIP_WITHOUT_POSTGRES();
    Session session(testing_support::PostgresConnectString());
    session.Execute(
        u"drop schema if exists s_1 cascade; drop schema if exists sx1 cascade; "
        u"drop table if exists \"q\"\"t\"");
    session.Execute(u"create schema s_1; create schema sx1");
    session.Execute(
        u"create table s_1.\"q\"\"t\"(id integer not null default 7, name varchar(20), "
        u"price numeric(8,3))");
    session.Execute(u"create table sx1.\"q\"\"t\"(other integer)");
    session.Execute(u"create table \"q\"\"t\"(here integer)");
    session.Execute(u"create view s_1.v as select 1 as one");

    std::vector<TableEntry> tables;
    String error;
    ASSERT_TRUE(session.database.Tables(error, tables, TableKind::Tables)) << ToUtf8(error);
    Texts found;
    for (const TableEntry& table : tables)
        if (table.Name == u"q\"t" && table.Detail[0] == u's') found.push_back(ToUtf8(table.Detail));
    EXPECT_EQ(found, (Texts{"s_1", "sx1"}));
    ASSERT_TRUE(session.database.Tables(error, tables, TableKind::Views)) << ToUtf8(error);
    EXPECT_TRUE(std::any_of(tables.begin(), tables.end(), [](const TableEntry& table) {
        return table.Name == u"v" && table.Detail == u"s_1" && table.Flag == 0;
    }));

    EXPECT_EQ(session.ColumnsOf(u"", u"q\"t"), Texts{"q\"t.here"})
        << "without a schema this driver looks where the server would";
    EXPECT_EQ(session.ColumnsOf(u"sx1", u"q\"t"), Texts{"q\"t.other"});
    std::vector<CatalogColumn> columns;
    ASSERT_TRUE(session.database.Columns(error, u"s_1", u"q\"t", columns)) << ToUtf8(error);
    Texts described;
    for (const CatalogColumn& column : columns)
        described.push_back(ToUtf8(column.Column + u"," + column.TypeName + u"," + column.Size +
                                   u"," + column.Digits + u"," + column.Nullable + u"," +
                                   column.Default));
    EXPECT_EQ(described,
              (Texts{"id,int4,10,0,0,7", "name,varchar,20,,1,", "price,numeric,8,3,1,"}));
    session.Execute(u"drop schema s_1 cascade; drop schema sx1 cascade; drop table \"q\"\"t\"");
}

// ---- A server that goes away ----

TEST_F(OdbcDatabase, SurvivesLossOfConnectionBetweenTwoFetches) {
    SKIP_WITHOUT_POSTGRES();
    const String connect_string = testing_support::PostgresConnectString();
    Session session(connect_string + u"UseDeclareFetch=1;Fetch=10;");
    const String process = session.Value(u"select pg_backend_pid()");
    session.Query(u"select * from generate_series(1, 1000) as n");
    String error;
    for (int row = 1; row <= 5; ++row)
        ASSERT_TRUE(session.database.Fetch(error, session.rows, false)) << row;
    EXPECT_EQ(session.rows.Row.at(0).Text, u"5");

    EXPECT_EQ(Session(connect_string).Ask(u"select pg_terminate_backend(" + process + u", 5000)"),
              Texts{"1"});
    EXPECT_LT(FetchAll(session.database, session.rows).size(), 100u);
    EXPECT_TRUE(session.database.ReadingFailed());
    ExpectDiagnostic(ToUtf8(session.database.LastError()));
    EXPECT_FALSE(session.database.HasMoreData(error, session.rows));
    EXPECT_EQ(error, u"");
    session.database.CloseQuery();

    std::vector<TableEntry> tables;
    std::vector<CatalogColumn> columns;
    EXPECT_FALSE(session.database.Query(error, u"select 1", session.rows));
    ExpectMessage(error, "ODBCDatabase::Query execution error: ");
    session.database.CloseQuery();
    EXPECT_FALSE(session.database.Tables(error, tables, TableKind::Tables));
    ExpectMessage(error, "ODBCDatabase::Tables. Tables list error: ");
    EXPECT_FALSE(session.database.Columns(error, u"", u"t", columns));
    ExpectMessage(error, "Table's column list error: ");

    session.database.Close();
    ASSERT_TRUE(session.database.Open(error, connect_string, {}, {})) << ToUtf8(error);
    EXPECT_EQ(session.Ask(u"select 'back again'"), Texts{"back again"});
}

}  // namespace
