#include "consumers/database_schema.h"

#include "support/sqlite.h"
#include "support/target_fixture.h"

namespace {

class DatabaseSchemaTarget : public testing_support::TargetFixture {
protected:
    // Describes two columns to a target with these settings and closes it.
    String Statement(const testing_support::Settings& more) {
        testing_support::Settings all{
            {u"DSN", testing_support::SqliteConnectString(folder_, "test.db")}};
        all.insert(all.end(), more.begin(), more.end());
        DataConsumers::DatabaseSchema target;
        EXPECT_TRUE(target.Open(error_, step_.With(Section::Target, all))) << ToUtf8(error_);
        Describe(u"a|b|c|d|e|f|g");
        rows_.SchemaName = u"own";
        EXPECT_FALSE(target.Prepare(error_, rows_));
        for (const StringView column : {u"t|id|int|4|0|0|~", u"t|name|varchar|0|0|1|'x'"}) {
            rows_.Row = testing_support::RowOf(column);
            EXPECT_TRUE(target.Write(error_, rows_));
        }
        EXPECT_FALSE(target.NextResultSet(error_, step_.With(Section::Target, all)));
        EXPECT_EQ(target.WrittenSize(), 2u);
        EXPECT_TRUE(target.Close(error_) && error_.empty());
        return target.Statement();
    }
};

TEST_F(DatabaseSchemaTarget, PutsAStatementTogether) {
    const String columns = u" (\r\n id int not null,\r\n name varchar(max)  default 'x' null)";
    EXPECT_EQ(Statement({{u"Table", u"dbo.[t]"}, {u"Delimiter", u";"}}),
              u"create table \"dbo\".\"t\"" + columns + u";\r\n");
    EXPECT_EQ(Statement({}), u"create table \"own\".\"base\"" + columns + u"\r\n");
}

}  // namespace
