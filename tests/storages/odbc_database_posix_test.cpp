#include "base/utf8.h"
#include "storages/odbc_database.h"
#include "support/one_step.h"

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

}  // namespace
