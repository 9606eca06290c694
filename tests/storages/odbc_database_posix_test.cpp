#include <algorithm>

#include "base/utf8.h"
#include "files/format.h"
#include "storages/odbc_database.h"
#include "support/one_step.h"
#include "support/scratch.h"

namespace {

TEST(OdbcDriver, HasItsWordsToldWhereReadingFails) {
    DataStorages::ODBCDatabase database;
    String error;
    RowSet rows;
    const auto open = [&](const String& words) {
        ASSERT_TRUE(database.Open(error, u"Driver=" QUILLON_TEST_DRIVER ";" + words, u"", u""))
            << ToUtf8(error);
    };
    open(u"NoTotal=1;Fail=SQLFetch:2");
    EXPECT_TRUE(database.Query(error, u"select", rows));
    EXPECT_EQ(testing_support::FetchAll(database, rows),
              std::vector<std::string>{"1|row-1 \u00e9,\"q\" 'a'|x\n<end>|1.50|2020-02-02|"});
    EXPECT_TRUE(database.ReadingFailed());
    EXPECT_EQ(database.LastError(), u"lost,HY000,7");
    open(u"Fail=SQLGetData:3");
    EXPECT_TRUE(database.Query(error, u"select", rows));
    EXPECT_FALSE(database.Fetch(error, rows, false));
    EXPECT_EQ(error, u"lost,HY000,7");
    open(u"Fail=SQLFetch:1");
    std::vector<DataStorages::TableEntry> tables;
    EXPECT_FALSE(database.Tables(error, tables, DataStorages::TableKind::Tables));
    EXPECT_EQ(error, u"ODBCDatabase::Tables. Tables list error: lost,HY000,7");
    database.Close();
}

// All rows of all result sets, and whether reading ended well.
std::vector<std::string> ReadAll(const String& words, bool in_blocks, std::uint64_t memory) {
    DataStorages::ODBCDatabase database;
    String error;
    RowSet rows;
    std::vector<std::string> all;
    EXPECT_TRUE(database.Open(error, u"Driver=" QUILLON_TEST_DRIVER ";" + words, u"", u""));
    database.ReadBy({.in_blocks = in_blocks, .block_bytes = memory, .whole_values = true});
    EXPECT_TRUE(database.Query(error, u"select", rows)) << ToUtf8(error);
    do {
        const auto set = testing_support::FetchAll(database, rows);
        all.insert(all.end(), set.begin(), set.end());
        all.emplace_back(database.ReadingFailed() ? "failed" : "end");
    } while (database.HasMoreData(error, rows));
    database.Close();
    return all;
}

TEST(OdbcDriver, IsReadAlikeWhateverItRefuses) {
    const String kContents[] = {u"Rows=0;", u"Rows=1;", u"Rows=2500;", u"Rows=40;Sets=3;",
                                u"Rows=40;Fail=SQLFetch:1;"};
    const String kManners[] = {u"",           u"Refuse=27;",          u"NoBlocks=1;",
                               u"NoTotal=1;", u"Piece=999;",          u"LastRow=1;",
                               u"Short=1;",   u"Short=1;NoBlocks=1;", u"Refuse=25;"};
    for (const String& content : kContents) {
        const auto expected = ReadAll(content, false, 0);
        for (const String& manner : kManners) {
            for (const std::uint64_t memory : {8'000'000U, 20'000U, 100U}) {
                EXPECT_EQ(ReadAll(content + manner, true, memory), expected)
                    << ToUtf8(content + manner) << memory;
            }
        }
    }
}

// Sends rows of five columns and returns the lines that arrived.
std::string SendRows(const String& words, std::size_t count, std::size_t rows_a_statement,
                     String& error) {
    const testing_support::ScratchFolder folder;
    DataStorages::ODBCDatabase database;
    const String connect = u"Driver=" QUILLON_TEST_DRIVER ";Store=" + folder.Path("store") + u";";
    RowSet rows;
    EXPECT_TRUE(database.Open(error, connect + words, u"", u"") &&
                database.Describe(error, u"select", rows) && database.BeginTransactions(error))
        << ToUtf8(error);
    auto sender = database.MakeSender({.head = u"insert into t values",
                                       .columns = rows.Columns,
                                       .rows = rows_a_statement,
                                       .end = {}});
    rows.GrowRow(rows.Columns.size());
    bool sent = true;
    for (std::size_t i = 0; sent && i < count; ++i) {
        rows.Row[0].Text = Format(u"%u", i);
        rows.Row[1].IsNull = i % 3 == 0;
        rows.Row[2].Text = String(i % 50 == 7 ? 5'000 : i % 70, u'x');  // some travel alone
        sent = sender->Fits(rows) || sender->Send(error);
        if (sent && !sender->Fits(rows)) sender->Clear();
        sent = sent && sender->Add(error, rows);
        if (sent && sender->IsFull()) {
            sent = sender->Send(error);
            sender->Clear();
        }
    }
    sent = sent && sender->Send(error) && database.Commit(error);
    sender.reset();
    database.Close();
    return sent ? folder.Read("store") : "";
}

TEST(OdbcDriver, GetsTheSameRowsHoweverTheyAreSent) {
    String error;
    const std::string one_by_one = SendRows(u"", 300, 1, error);
    EXPECT_EQ(std::count(one_by_one.begin(), one_by_one.end(), '\n'), 300) << ToUtf8(error);
    for (const char16_t* words : {u"", u"Refuse=22;"}) {
        for (const std::size_t rows : {0U, 7U, 300U, 4'000U}) {
            EXPECT_TRUE(SendRows(words, 300, rows, error) == one_by_one)
                << ToUtf8(words) << rows << ToUtf8(error);
        }
    }
    for (const char16_t* failing : {u"SQLExecute:2", u"SQLBindParameter:3"}) {
        error.clear();
        EXPECT_TRUE(SendRows(String(u"Fail=") + failing + u";", 300, 7, error).empty());
        EXPECT_EQ(ToUtf8(error), "ODBCDatabase::Insert execution error: lost,HY000,7");
    }
}

}  // namespace
