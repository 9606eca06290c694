#include "storages/odbc_database.h"

#include <algorithm>
#include <clocale>

#include "files/text.h"
#include "servers/postgres.h"
#include "support/one_step.h"
#include "support/sqlite.h"

namespace {

using namespace DataStorages;
using namespace testing_support;
using Texts = std::vector<std::string>;

const String kSqlite = u"Driver=SQLite3;Database=:memory:;";

// A test of one database, with the row set of one step.
class OdbcDatabase : public testing::Test {
protected:
    explicit OdbcDatabase(const String& connect_string = kSqlite) {
        platform::PrepareProcess();
        if (!connect_string.empty()) Connect(connect_string);
    }
    ~OdbcDatabase() override { database_.Close(); }

    void Connect(const String& source) { Expect(database_.Open(error_, source, {}, {})); }
    void Query(const String& statement) { Expect(database_.Query(error_, statement, rows_)); }
    void Execute(const String& statement) { Expect(database_.ExecNonQuery(error_, statement)); }
    bool Fetch(bool track_widths = false) { return database_.Fetch(error_, rows_, track_widths); }
    bool More() { return database_.HasMoreData(error_, rows_); }
    void Expect(bool done) { EXPECT_TRUE(done) << ToUtf8(error_); }
    void ExpectFailure(bool done, const std::string& error) {
        EXPECT_FALSE(done);
        EXPECT_EQ(ToUtf8(std::exchange(error_, {})), error);
    }
    // A failure with the driver's message, SQLSTATE and native error number between two texts.
    void ExpectDiagnostic(bool done, const std::string& head, const std::string& tail = "") {
        std::string said = ToUtf8(std::exchange(error_, {}));
        ASSERT_TRUE(!done && said.starts_with(head) && said.ends_with(tail)) << said;
        said = said.substr(0, said.size() - tail.size()).substr(head.size());
        const std::size_t number = said.rfind(',');
        ASSERT_TRUE(number < said.size() - 1 && number > 6 && said[number - 6] == ',') << said;
        EXPECT_EQ(said.find_first_not_of("-0123456789", number + 1), std::string::npos) << said;
    }
    // All rows of the first result set of a statement.
    Texts Ask(const String& statement) {
        rows_ = {};
        Query(statement);
        Texts all = FetchAll(database_, rows_);
        EXPECT_TRUE(database_.CloseQuery());
        return all;
    }
    // "schema.table" for each without a schema or in the test's own.
    Texts Tables(TableKind kind) {
        std::vector<TableEntry> entries(1);  // to be emptied
        Expect(database_.Tables(error_, entries, kind));
        Texts all;
        for (const TableEntry& e : entries)
            if (e.Detail.empty() || e.Detail == u"s_1")
                all.push_back(ToUtf8(e.Detail + u"." + e.Name));
        return all;
    }
    // What the catalogue tells of the columns of a table.
    Texts Columns(const String& schema, const String& table) {
        std::vector<CatalogColumn> columns(1);
        Expect(database_.Columns(error_, schema, table, columns));
        Texts all;
        for (const CatalogColumn& c : columns)
            all.push_back(ToUtf8(c.Table + u"." + c.Column + u" " + c.TypeName + u"," + c.Size +
                                 u"," + c.Digits + u"," + c.Nullable + u"," + c.Default));
        return all;
    }
    Texts Described() const {
        Texts all;
        for (const ColumnDefinition& c : rows_.Columns)
            all.push_back(ToUtf8(c.TableName + u"." + c.Name + u" " + c.TypeName + u" " +
                                 c.LiteralPrefix + c.LiteralSuffix) +
                          std::to_string(c.DataType) + "," + std::to_string(c.Length) +
                          (c.Nullable ? "" : " not null") + (c.AutoUnique ? " unique" : ""));
        return all;
    }
    void ExpectStatementsWork();

    ODBCDatabase database_;
    RowSet rows_;
    String error_;
};

class OdbcPostgres : public OdbcDatabase {
protected:
    OdbcPostgres() : OdbcDatabase(PostgresConnectString()) {}
    void SetUp() override { SKIP_WITHOUT_POSTGRES(); }
};

TEST_F(OdbcDatabase, SaysWhyItCouldNotConnect) {
    const std::pair<const char16_t*, std::string> kCases[] = {
        {u"no such source", "Connection to 'no such source' for 'me' failed: '"},
        {u"driver=SQLite3;Database=x",
         "Connection to 'driver=SQLite3;Database=x' for 'me' failed: '"},
        {u"Database=/no/db;Driver=SQLite3",
         "Connection with string 'Database=/no/db;Driver=SQLite3' failed: '"},
        {u"Driver=PostgreSQL Unicode;Server=127.0.0.1;Port=1;",
         "Connection with string 'Driver=PostgreSQL Unicode;Server=127.0.0.1;Port=1;' failed: '"},
    };
    for (const auto& [source, head] : kCases)
        ExpectDiagnostic(database_.Open(error_, source, u"me", u"secret"),
                         "ODBCDatabase::Open. " + head, "'");
}

// PostgreSQL's driver sets the character type of the process to that of its environment. In one
// that is not UTF-8 the program's own choice must outlive that, or the driver manager spoils the
// text of the next database.
TEST_F(OdbcPostgres, ConnectsByNameAndLeavesTheLocaleAlone) {
    const ScratchFolder folder;
    std::string server = ToUtf8(PostgresConnectString());
    std::replace(server.begin(), server.end(), ';', '\n');
    server.replace(server.find("Server="), 7, "Servername=");  // its name in that file
    server.resize(server.find("Uid="));
    folder.Write("odbc.ini", "[Test]\n" + server + "[Büro]\n" + server);
    if (!SetDriverEnvironment("LC_ALL", u"C") ||
        !SetDriverEnvironment("ODBCINI", folder.Path("odbc.ini")))
        GTEST_SKIP() << "the drivers' environment is fixed on this system";
    platform::PrepareProcess();
    const std::string before = std::setlocale(LC_CTYPE, nullptr);
    Connect(PostgresConnectString());
    EXPECT_EQ(std::setlocale(LC_CTYPE, nullptr), before);
    for (const char16_t* name : {u"Test", u"Büro"}) {
        Expect(database_.Open(error_, name, u"postgres", u"any"));
        EXPECT_EQ(Ask(u"select current_user, 'ž😀'"), Texts{"postgres|ž😀|"}) << ToUtf8(name);
        EXPECT_EQ(database_.IdentifierQuote(), u"\"");
    }
    EXPECT_FALSE(database_.Open(error_, u"Test", u"nobody here", u"any"));
}

TEST_F(OdbcDatabase, FindsWhatIsNamedBeyondAscii) {
    const ScratchFolder folder;
    const String path = folder.Path("jürgen 日😀.db");
    folder.Write("odbc.ini", "[Käse]\nDriver=SQLite3\nDatabase=" + ToUtf8(path));
    if (!SetDriverEnvironment("ODBCINI", folder.Path("odbc.ini")))
        GTEST_SKIP() << "what drivers make of names is settled elsewhere on this system";
    Connect(u"Driver={sqlite3};NoTXN=1;Database=" + path + u";");
    Execute(u"create table t as select '😀ž'");
    EXPECT_TRUE(folder.Exists("jürgen 日😀.db"));
    for (const String& source : {u"Database=" + path + u";Driver=SQLite3", String(u"Käse"),
                                 text::Widen("Käse")}) {  // as the driver manager lists it
        Connect(source);
        EXPECT_EQ(Ask(u"select * from t where 'ž😀' <> ''"), Texts{"😀ž|"}) << ToUtf8(source);
    }
}

TEST_F(OdbcDatabase, WorksOnlyWhileConnected) {
    ExpectFailure(Fetch(), "");  // before Query
    Query(u"select 1 union select 2");
    EXPECT_TRUE(Fetch());
    EXPECT_TRUE(database_.Close());  // with the statement still open
    std::vector<TableEntry> tables;
    std::vector<CatalogColumn> columns;
    const std::string kNot = "he database connection is not established yet.";
    ExpectFailure(Fetch(), "");
    ExpectFailure(More(), "ODBCDatabase::HasMoreData no active statement");
    ExpectFailure(database_.Query(error_, u"select 1", rows_), "ODBCDatabase::Query t" + kNot);
    ExpectFailure(database_.ExecNonQuery(error_, u"select 1"), "ODBCDatabase::Query t" + kNot);
    ExpectFailure(database_.Tables(error_, tables, TableKind::Tables),
                  "ODBCDatabase::Tables. T" + kNot);
    ExpectFailure(database_.Columns(error_, u"", u"t", columns), "T" + kNot);
    Connect(kSqlite);
    EXPECT_EQ(Ask(u"select 1"), Texts{"1|"});
}

// What every driver has to get right.
void OdbcDatabase::ExpectStatementsWork() {
    const std::string kEmpty = "ODBCDatabase::Query the empty query was passed.";
    ExpectFailure(database_.Query(error_, u"", rows_), kEmpty);
    ExpectFailure(database_.ExecNonQuery(error_, u""), kEmpty);
    ExpectDiagnostic(database_.Query(error_, u"select * from \"žádná\"", rows_),
                     "ODBCDatabase::Query execution error: ");
    EXPECT_NE(database_.LastError().find(u"žádná"), String::npos);
    ExpectFailure(Fetch(), "");
    // The statement that is still open does not stand in the way of the next one.
    EXPECT_EQ(Ask(u"select null, '', 'null', 'Ωμέγα ₤ ž'"), Texts{"<null>||null|Ωμέγα ₤ ž|"});
    ExpectDiagnostic(database_.ExecNonQuery(error_, u"drop table nowhere"),
                     "ODBCDatabase::ExecNonQuery execution error: ");
    database_.CloseQuery();

    Execute(u"create temp table \"kůň\"(\"日本\" text)");
    Execute(u"insert into \"kůň\" values ('č'), (null)");
    Execute(u"select 'discarded'");
    rows_ = {};
    Query(u"select \"日本\" from \"kůň\"");
    EXPECT_EQ(ColumnNames(rows_), "日本|");
    EXPECT_EQ(FetchAll(database_, rows_), (Texts{"č|", "<null>|"}));
    EXPECT_EQ(rows_.Row[0].Text, u"") << "of a value that is now NULL";
    database_.CloseQuery();
    Query(u"delete from \"kůň\" where 1 = 2");  // to change no row is no failure
    EXPECT_EQ(ColumnNames(rows_), "");
    ExpectFailure(Fetch(true) || More() || database_.ReadingFailed(), "");
    database_.CloseQuery();
    EXPECT_EQ(Ask(u"select count(*) from \"kůň\""), Texts{"2|"});
}

TEST_F(OdbcDatabase, ExecutesStatements) {
    ExpectStatementsWork();
    EXPECT_EQ(Ask(u"select 'a' || char(128512) || 'b'"), Texts{"a😀b|"});
}

TEST_F(OdbcPostgres, ExecutesStatements) {
    ExpectStatementsWork();
    const String raise = u"do $$ begin raise exception '%', repeat('long ', 1000); end $$";
    ExpectDiagnostic(database_.ExecNonQuery(error_, raise),
                     "ODBCDatabase::ExecNonQuery execution error: ");
    EXPECT_TRUE(database_.LastError().size() > 500 && database_.LastError().size() <= 543);
    EXPECT_NE(database_.LastError().find(u",P0001,"), String::npos);
    database_.CloseQuery();
    EXPECT_EQ(Ask(u"select '😀' || 'ž', length('😀') as \"s😀l\""), Texts{"😀ž|1|"});
    EXPECT_EQ(ColumnNames(rows_), "?column?|s😀l|");
    EXPECT_EQ(Ask(u"select repeat('žy', 524288) || '!'").at(0).size(), 3u * 524288 + 2);
}

TEST_F(OdbcDatabase, CutsValuesAtItsBuffer) {
    constexpr std::size_t kRoom = 16'777'216 / 2 - 1;  // one unit ends the text in the buffer
    Query(
        u"select substr(a, 1, 8388607), substr(a, 1, 8388608), a, 'next' "
        u"from (select replace(hex(zeroblob(4500000)), '00', 'ab') as a)");
    Expect(Fetch(true));
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_TRUE(rows_.Row[i].Text.size() == kRoom && rows_.Row[i].Text.ends_with(u"aba")) << i;
        EXPECT_EQ(rows_.Columns[i].MaxWidth, kRoom);
    }
    EXPECT_EQ(rows_.Row[3].Text, u"next");
}

TEST_F(OdbcDatabase, TracksWidthsOnlyWhenAsked) {
    for (const bool track : {true, false}) {
        Query(u"select 'x' as name, 'wider' as w, null as n union all select 'y', '123', null");
        EXPECT_EQ(FetchAll(database_, rows_, track).size(), 2u);
        EXPECT_EQ(rows_.Columns[0].MaxWidth, 4u);
        EXPECT_EQ(rows_.Columns[1].MaxWidth, track ? 5u : 1u);
        EXPECT_EQ(rows_.Columns[2].MaxWidth, 1u);
    }
    Query(u"select 1, 2");
    rows_.Columns.resize(1);
    ExpectFailure(Fetch(true), "ODBCDatabase::Fetch. Wrong 'definitions' array size.");
}

TEST_F(OdbcDatabase, DescribesColumns) {
    Execute(u"create table t(id integer not null, name varchar(20), born date, x blob)");
    Query(u"select * from t");
    // This driver has no literal marks to tell, and 91 although it is not the verbose code.
    EXPECT_EQ(Described(), (Texts{"t.id INTEGER 4,10 not null", "t.name varchar ''12,20",
                                  "t.born date ''91,10", "t.x BLOB ''-2,255"}));
    // More columns than before, then fewer: nothing stays behind but the room of the row.
    EXPECT_EQ(Ask(u"select 1, 2, 3, 4, 5"), Texts{"1|2|3|4|5|"});
    Query(u"select 6 as six");
    EXPECT_EQ(database_.ColumnCount(), 1);
    EXPECT_EQ(FetchAll(database_, rows_), Texts{"6|2|3|4|5|"});
}

TEST_F(OdbcPostgres, DescribesColumns) {
    Execute(
        u"create temp table d(id serial, name varchar(20) not null, born date, "
        u"price numeric(10,2), note text, at timestamp)");
    Query(u"select * from d");
    EXPECT_EQ(Described(),
              (Texts{"d.id serial 4,10 not null unique", "d.name varchar ''-9,20 not null",
                     "d.born date ''9,10", "d.price numeric 2,10", "d.note text ''-10,8190",
                     "d.at timestamp without time zone ''9,26"}));
    EXPECT_EQ(rows_.Columns[1].DisplaySize, 20);
}

TEST_F(OdbcPostgres, MovesThroughResultSets) {
    Query(
        u"select 1 as a, 2 as b; select 'x' as only; "
        u"create temp table made(a integer); select 3 as c where false");
    std::string seen;
    do {
        seen += "[" + ColumnNames(rows_) + "]";
        for (const std::string& row : FetchAll(database_, rows_)) seen += row;
    } while (More());
    EXPECT_EQ(seen, "[a|b|]1|2|[only|]x|2|[][c|]");
    ExpectFailure(database_.ReadingFailed(), "");
}

TEST_F(OdbcDatabase, CatalogueKnowsTablesByExactName) {
    const String kNames[] = {u"100%", u"1000", u"Příliš", u"aXb", u"a_b", u"back\\slash", u"it's"};
    Texts tables;
    for (const String& name : kNames) {
        Execute(u"create table \"" + name + u"\"(c integer)");
        tables.push_back("." + ToUtf8(name));
    }
    Execute(u"create view \"a view\" as select 1 as one");
    EXPECT_EQ(Tables(TableKind::Tables), tables);
    EXPECT_EQ(Tables(TableKind::Views), Texts{".a view"});
    for (const String& name : kNames)
        EXPECT_EQ(Columns(u"", name), Texts{ToUtf8(name) + ".c INTEGER,9,10,1,NULL"});
    EXPECT_EQ(Columns(u"", u"nothing"), Texts{});
}

TEST_F(OdbcPostgres, CatalogueKnowsSchemas) {
    Execute(
        u"drop schema if exists s_1 cascade; drop schema if exists sx1 cascade; "
        u"create schema s_1; create schema sx1; create view s_1.v as select 1 as one; "
        u"create table s_1.\"q\"\"t\"(id integer not null default 7, price numeric(8,3)); "
        u"create table sx1.\"q\"\"t\"(other varchar(20))");
    EXPECT_EQ(Tables(TableKind::Tables), Texts{"s_1.q\"t"});
    EXPECT_EQ(Tables(TableKind::Views), Texts{"s_1.v"});
    EXPECT_EQ(Columns(u"sx1", u"q\"t"), Texts{"q\"t.other varchar,20,,1,"});
    EXPECT_EQ(Columns(u"s_1", u"q\"t"),
              (Texts{"q\"t.id int4,10,0,0,7", "q\"t.price numeric,8,3,1,"}));
    Execute(u"drop schema s_1, sx1 cascade");
}

TEST_F(OdbcPostgres, SurvivesLossOfConnectionBetweenTwoFetches) {
    Connect(PostgresConnectString() + u"UseDeclareFetch=1;Fetch=10;");
    Query(u"select pg_backend_pid() from generate_series(1, 1000)");
    for (int row = 1; row <= 5; ++row) Expect(Fetch());
    ODBCDatabase other;
    Expect(other.Open(error_, PostgresConnectString(), {}, {}));
    Expect(other.ExecNonQuery(error_,
                              u"select pg_terminate_backend(" + rows_.Row.at(0).Text + u", 5000)"));
    other.Close();
    EXPECT_LT(FetchAll(database_, rows_).size(), 100u);
    EXPECT_TRUE(database_.ReadingFailed());
    ExpectFailure(More(), "");
    database_.CloseQuery();

    std::vector<CatalogColumn> columns;
    ExpectDiagnostic(database_.Query(error_, u"select 1", rows_),
                     "ODBCDatabase::Query execution error: ");
    database_.CloseQuery();
    ExpectDiagnostic(database_.Columns(error_, u"", u"t", columns), "Table's column list error: ");
    Connect(PostgresConnectString());
    EXPECT_EQ(Ask(u"select 'back again'"), Texts{"back again|"});
}

}  // namespace
