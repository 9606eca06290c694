#include "run/data_step.h"

#include "run/job_fixture.h"
#include "servers/postgres.h"
#include "support/sqlite.h"

namespace {

class DataStepTest : public testing_support::JobTest {
protected:
    std::string SqliteStep(const std::string& query, const std::string& target) const {
        return QueryStep(ToUtf8(testing_support::SqliteConnectString(folder_, "test.db")), query,
                         target);
    }
    static std::string PostgresStep(const std::string& query, const std::string& target) {
        return QueryStep(ToUtf8(testing_support::PostgresConnectString()), query, target);
    }

private:
    static std::string QueryStep(const std::string& connect_string, const std::string& query,
                                 const std::string& target) {
        return "Step #1\nSource\nType=DatabaseQuery\nConnectString=\"" + connect_string +
               "\"\nQuery=\"" + query + "\"\nTarget\nType=TextFile\nName=@out.txt\n" + target;
    }
};

TEST_F(DataStepTest, LinesUpWhatItHasMeasured) {
    const std::string query =
        "select 'a' as id, 'wide value' as v, '' as long_name union all "
        "select 'bbbb', null, 'z'";
    ASSERT_TRUE(RunSilently(SqliteStep(query, "FixedWidth=1\nHeader=1\n"))) << ToUtf8(error_);
    EXPECT_EQ(folder_.Read("out.txt"),
              "id  v         long_name\r\n"
              "a   wide value         \r\n"
              "bbbbNULL      z        \r\n");
    EXPECT_EQ(Log(), "");
}

TEST_F(DataStepTest, LinesUpHeaderWithoutRows) {
    ASSERT_TRUE(
        RunSilently(SqliteStep("select 1 as a, 2 as bc where 1 = 0", "FixedWidth=1\nHeader=1\n")));
    EXPECT_EQ(folder_.Read("out.txt"), "abc\r\n");
}

TEST_F(DataStepTest, DoesNotMeasureTextFiles) {
    folder_.Write("in.txt", "id\tname\n1\tlong value\n22\tx\n");
    ASSERT_TRUE(
        RunSilently("Step #1\nSource\nType=TextFile\nName=@in.txt\nTarget\nType=TextFile\n"
                    "Name=@out.txt\nFixedWidth=1\nHeader=1\n"));
    EXPECT_EQ(folder_.Read("out.txt"), "idname\r\n1long value\r\n22x\r\n");
}

TEST_F(DataStepTest, MovesAllResultSets) {
    SKIP_WITHOUT_POSTGRES();
    const std::string query = "select 1 as a, 2 as b; select 3 as c; select 4, 5, 6";
    const struct {
        const char* name;
        const char* target;
        const char* file;
    } kCases[] = {
        {"one file", "Overwrite=1\n", "1\t2\r\n3\r\n4\t5\t6\r\n"},
        {"a header each", "Overwrite=1\nHeader=1\n",
         "a\tb\r\n1\t2\r\nc\r\n3\r\n?column?\t?column?\t?column?\r\n4\t5\t6\r\n"},
        {"a file each, of one name", "Overwrite=1\nOneFilePerResultSet=1\n", "4\t5\t6\r\n"},
        {"fixed width", "Overwrite=1\nFixedWidth=1\nHeader=1\n",
         "ab\r\n12\r\nc\r\n3\r\n?column??column??column?\r\n4       5       6       \r\n"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_TRUE(Run(PostgresStep(query, c.target), {"-Log=@log.txt"})) << ToUtf8(error_);
        EXPECT_EQ(folder_.Read("out.txt"), c.file);
    }
    EXPECT_TRUE(Log().starts_with(
        Record("\nStep #0: 3 items done, total 0.000 seconds, processing 0.000 seconds.")));
}

TEST_F(DataStepTest, TakesQueryWithoutColumns) {
    ASSERT_TRUE(RunSilently(SqliteStep("create table made(a)", ""))) << ToUtf8(error_);
    EXPECT_EQ(folder_.Read("out.txt"), "");
    ASSERT_TRUE(RunSilently(SqliteStep("select count(*) from made", "")));
    EXPECT_EQ(folder_.Read("out.txt"), "0\r\n");
    EXPECT_EQ(Log(), "");
}

}  // namespace
