#include "providers/database_query.h"

#include "support/one_step.h"
#include "support/sqlite.h"

namespace {

TEST(DatabaseQuerySource, SaysWhatFailed) {
    const testing_support::ScratchFolder folder;
    const String connect = testing_support::SqliteConnectString(folder, "test.db");
    const String folder_head =
        u"Could not load query file '" + folder.Path() + u"': Could not open";
    const String login_head = u"ODBCDatabase::Open. Connection to 'none' for 'me' failed: '";
    // clang-format off
    const struct { testing_support::Settings settings; String head; } kCases[] = {
        {{{u"DSN", connect}, {u"QueryFile", folder.Path()}}, folder_head + u" file for reading: "},
        {{{u"DSN", u"none"}, {u"Query", u"a"}, {u"Login", u"me"}, {u"User", u"no"}}, login_head},
        {{{u"DSN", u"none"}, {u"Query", u"a"}, {u"User", u"me"}}, login_head},
    };
    // clang-format on
    testing_support::OneStep step;
    for (const auto& c : kCases) {
        DataProviders::DatabaseQuery source;
        RowSet rows;
        String error;
        EXPECT_FALSE(source.Fetch(error, rows, false) || source.Close());  // not open: nothing
        EXPECT_FALSE(source.Open(error, step.With(Section::Source, c.settings), rows));
        EXPECT_TRUE(error.starts_with(c.head) && error.size() > c.head.size() + 1) << ToUtf8(error);
    }
}

}  // namespace
