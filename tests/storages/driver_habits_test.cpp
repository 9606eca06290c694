#include "storages/driver_habits.h"

#include <gtest/gtest.h>

#include "base/utf8.h"

namespace {

TEST(DriverHabits, AreFoundByDatabaseVersionAndDriver) {
    const struct {
        StringView product, version, driver;
        std::string expected;  // rows a statement, with sets, with a start of its own
    } cases[] = {
        {u"SQLite", u"3.40.1", u"libsqlite3odbc.so", "50 start"},
        {u"SQLite", u"3.8.5", u"SQLITE3ODBC.DLL", "50 start"},
        {u"SQLite", u"3.8.4.3", u"sqlite3odbc.dll", "50"},
        {u"SQLite", u"3.7.17", u"sqlite3odbc.dll", "50"},
        {u"SQLite", u"4", u"sqlite3odbc.dll", "50 start"},
        {u"SQLite", u"", u"sqlite3odbc.dll", "50"},
        {u"SQLite", u"3.40.1", u"another.so", "50"},
        {u"PostgreSQL", u"15.0.13", u"psqlodbcw.so", "100"},
        {u"MariaDB", u"10.11.11", u"libmaodbc.so", "1000 sets"},
        {u"MariaDB", u"10.11.11", u"libmyodbc8w.so", "1000 sets"},
        {u"MySQL", u"8.0.36", u"libmyodbc8w.so", "50"},
        {u"microsoft sql server", u"16.00.1000", u"libmsodbcsql-18.so", "50"},
        {u"", u"", u"", "1000 sets"},
    };
    for (const auto& c : cases) {
        const DataStorages::DriverHabits& found =
            DataStorages::HabitsOf(c.product, c.version, c.driver);
        EXPECT_EQ(std::to_string(found.rows) + (found.sets ? " sets" : "") +
                      (found.insert_start.empty() ? "" : " start"),
                  c.expected)
            << ToUtf8(c.product) << " " << ToUtf8(c.version) << " " << ToUtf8(c.driver);
    }
}

}  // namespace
