#include "support/sqlite.h"

#include <gtest/gtest.h>

#include "base/utf8.h"
#include "platform/environment.h"
#include "storages/odbc_database.h"

namespace testing_support {
namespace {

// The driver manager converts text for SQLite's driver by the locale that the program settles.
class PreparedProcess final : public testing::Environment {
public:
    void SetUp() override { platform::PrepareProcess(); }
};
const testing::Environment* const prepared_process =
    testing::AddGlobalTestEnvironment(new PreparedProcess);

}  // namespace

String SqliteConnectString(const ScratchFolder& folder, std::string_view name) {
    return u"Driver=SQLite3;Database=" + DriverPath(folder.Path(name)) + u";";
}

void RunInSqlite(const ScratchFolder& folder, std::string_view name, const String& statement) {
    DataStorages::ODBCDatabase database;
    String error;
    EXPECT_TRUE(database.Open(error, SqliteConnectString(folder, name), {}, {}) &&
                database.ExecNonQuery(error, statement))
        << ToUtf8(error);
    database.Close();
}

}  // namespace testing_support
