#include "storages/odbc_catalogue.h"

#include <gtest/gtest.h>

namespace {

using DataStorages::TableEntry;

TEST(OdbcCatalogue, KeepsTablesOfItsDatabase) {
    std::vector<TableEntry> tables{{u"other", u"", 0}, {u"own", u"", 0}, {u"any", u"", 0}};
    DataStorages::DropOtherCatalogs(u"Shop", {u"sho", u"sHOP", u""}, tables);
    ASSERT_EQ(tables.size(), 2u);
    EXPECT_EQ(tables[0].Name + tables[1].Name, u"ownany");
}

}  // namespace
