#include "base/utf8.h"
#include "storages/odbc_database.h"
#include "support/one_step.h"

namespace {

TEST(OdbcDriver, HasItsWordsToldWhereReadingFails) {
    DataStorages::ODBCDatabase database;
    String error;
    RowSet rows;
    ASSERT_TRUE(database.Open(error, u"Driver=" QUILLON_TEST_DRIVER, u"", u"")) << ToUtf8(error);
    EXPECT_TRUE(database.Query(error, u"select", rows));
    EXPECT_EQ(testing_support::FetchAll(database, rows), std::vector<std::string>{"short|"});
    EXPECT_TRUE(database.ReadingFailed());
    EXPECT_EQ(database.LastError(), u"lost,HY000,7");
    EXPECT_TRUE(database.Query(error, u"unreadable", rows));
    EXPECT_FALSE(database.Fetch(error, rows, false));
    EXPECT_EQ(error, u"lost,HY000,7");
    std::vector<DataStorages::TableEntry> tables;
    EXPECT_FALSE(database.Tables(error, tables, DataStorages::TableKind::Tables));
    EXPECT_EQ(error, u"ODBCDatabase::Tables. Tables list error: lost,HY000,7");
    database.Close();
}

}  // namespace
