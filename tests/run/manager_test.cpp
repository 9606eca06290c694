#include "run/manager.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "base/utf8.h"
#include "files/text.h"
#include "run/banner.h"
#include "servers/postgres.h"
#include "support/scratch.h"

namespace {

// A clock whose ticks follow a list, then stay at the last one. A run reads them at its start, and
// for each step at the start and the end of its processing and at its end.
struct ScriptedClock final : platform::Clock {
    platform::LocalTime Now() const override { return {2026, 3, 5, 9, 7, 3}; }
    std::uint64_t TickMs() const override {
        return next + 1 < ticks_ms.size() ? ticks_ms[next++] : ticks_ms.back();
    }
    std::vector<std::uint64_t> ticks_ms{0};
    mutable std::size_t next = 0;
};

const std::string kSource = "Source\nType=TextFile\nHeader=0\nName=@in.txt\n";
const std::string kTarget = "Target\nType=TextFile\nOverwrite=1\nName=@out.txt\n";
const std::string kCopyStep = "Step #\n" + kSource + kTarget;

// A message as log files hold it.
std::string Record(const std::string& message) {
    return "2026-03-05 09:07:03 > " + message + "\r\n\r\n";
}

// Runs jobs inside a scratch folder, which "@" in a job or an argument stands for.
class ManagerTest : public testing::Test {
protected:
    void SetUp() override { folder_.Write("in.txt", "1\n2\n3\n4\n5\n"); }
    String Here(const std::string& text) const {
        String all = FromNativeBytes(text);
        text::ReplaceAll(all, u"@", folder_.Path() + u"/");
        return all;
    }
    // Standard output is caught where it is a plain descriptor.
    bool Run(const std::string& job, const std::vector<std::string>& arguments) {
        folder_.Write("job.qpr", "\xEF\xBB\xBF" + ToUtf8(Here(job)));
        Configuration configuration(clock_);
        std::vector<String> all{u"-config=" + folder_.Path("job.qpr")};
        for (const std::string& argument : arguments) all.push_back(Here(argument));
        configuration.ParseCommandLine(all);
        error_.clear();
        testing::internal::CaptureStdout();
        const bool succeeded = Manager(clock_).Run(error_, configuration);
        output_ = testing::internal::GetCapturedStdout();
        return succeeded;
    }
    // What a step writes of a query's result.
    std::string Export(StringView database, const std::string& query, const std::string& target) {
        const std::string connect = "ConnectString=\"" + ToUtf8(database) + "\"\n";
        const std::string source = "Source\nType=DatabaseQuery\nQuery=\"" + query + "\"\n";
        EXPECT_TRUE(Run("Step #\n" + source + connect + kTarget + target, {"-Log=@log"}));
        return folder_.Read("out.txt");
    }

    testing_support::ScratchFolder folder_;
    ScriptedClock clock_;
    std::string output_;
    String error_;
};

TEST_F(ManagerTest, MovesAllResultSets) {
    SKIP_WITHOUT_POSTGRES();
    const std::string query = "select 1 as a; select 2 as c where 1 = 0; select 3 as wide, 4 as b";
    // clang-format off
    const std::pair<std::string, std::string> kFiles[] = {
        {"Header=1\n", "a\r\n1\r\nc\r\nwide\tb\r\n3\t4\r\n"},
        {"Header=1\nFixedWidth=1\n", "a\r\n1\r\nc\r\nwideb\r\n3   4\r\n"},
        {"OneFilePerResultSet=1\n", "3\t4\r\n"},
        {"Header=1\nOneFilePerResultSet=1\nOverwrite=0\n", "3\t4\r\n1\r\nc\r\nwide\tb\r\n3\t4\r\n"},
    };
    // clang-format on
    for (const auto& [target, file] : kFiles) {
        EXPECT_EQ(Export(testing_support::PostgresConnectString(), query, target), file) << target;
    }
    EXPECT_TRUE(folder_.Read("log").starts_with(
        Record("\nStep #0: 2 items done, total 0.000 seconds, processing 0.000 seconds.")));
}

TEST_F(ManagerTest, WritesStatisticsOfEachStep) {
    folder_.Write("in.txt", "1\n" + std::string(3'145'728, 'x') + "\n");
    clock_.ticks_ms = {1000, 1000, 1001, 1025, 1025, 1026, 1026,
                       2000, 3250, 4000, 4000, 5001, 7500};
    EXPECT_TRUE(Run(kCopyStep + kCopyStep + kCopyStep + "Step #\n" + kSource, {"-Log=@log"}));
    EXPECT_EQ(
        folder_.Read("log"),
        Record("\nStep #0: 2 items done, total 0.025 seconds, processing 0.001 seconds.") +
            Record("\nStep #1: 2 items done, total 0.026 seconds, processing 0.001 seconds.") +
            Record("3072 Kbytes written or 115.38 Mb/sec.") +
            Record("\nStep #2: 2 items done, total 3.000 seconds, processing 1.250 seconds.") +
            Record("3072 Kbytes written or  1.00 Mb/sec.") +
            Record("Warning (step 3): no target defined properly. Execute the source only.") +
            Record("\nStep #3: 2 items done, total 6.500 seconds, processing 1.001 seconds."));
}

TEST_F(ManagerTest, ShowsADotEachInterval) {
    if (std::filesystem::path::preferred_separator != '/')
        GTEST_SKIP() << "output cannot be caught";
    for (const auto& [interval, dots] :
         {std::pair{"2 rows", ".."}, {"5", "."}, {"6", ""}, {"-1", ""}}) {
        EXPECT_TRUE(Run(kCopyStep + "Settings\nShowProgress=" + interval, {"-Log=@log"}));
        EXPECT_EQ(output_, ToUtf8(BannerLine()) + "\n" + dots) << interval;
    }
}

TEST_F(ManagerTest, StopsOrGoesOnAfterFailure) {
    // clang-format off
    const std::pair<std::string, std::string> kFailures[] = {
        {"Source\nType=Nope\n" + kTarget, "Incorrect type for source 'Nope'."},
        {"Source\nType=TextFile\n" + kTarget, "'Name' parameter not specified."},
        {"Source\nType=TextFile\nName=@empty.txt\n" + kTarget, ""},  // no first line
        {kSource + "Target\nType=Nope\n", "Incorrect type for target 'Nope'."},
        {kSource + kTarget + "Transform\nType=No\n", "Transformer type 'No' is not supported yet"},
        {"System\nCommand=Nope\n", "System step contains unsupported command 'Nope'"},
    };
    // clang-format on
    const std::string next = "System step contains unsupported command 'next'";
    folder_.Write("empty.txt", "");
    for (const auto& [step, message] : kFailures) {
        for (const std::string stop : {"", "StopOnError=1\n", "StopOnError=false\n"}) {
            const bool goes_on = stop.ends_with("false\n");
            const std::string job = "Globals\n" + stop + "Step #\n" + step;
            folder_.Write("log", "");
            EXPECT_EQ(Run(job + "Step #\nSystem\nCommand=next\n", {"-silent", "-Log=@log"}),
                      goes_on);
            EXPECT_EQ(ToUtf8(error_), goes_on ? "" : message) << job;
            const std::string log = message.empty() ? "" : Record(message);
            EXPECT_EQ(folder_.Read("log"), goes_on ? log + Record(next) : log) << job;
        }
    }
}

TEST_F(ManagerTest, LogsToTheFileOfTheRunOrTheStep) {
    const std::string mark = "\xEF\xBB\xBF", wide_mark = "\xFF\xFE";
    const std::string record = Record("Incorrect type for source 'ž😀'.");
    const String units = Here(record);
    const std::string wide =
        wide_mark + std::string(reinterpret_cast<const char*>(units.data()), units.size() * 2);
    // clang-format off
    const struct { const char *settings, *argument, *log; std::string before, after; } kCases[] = {
        {"Log=@step.log\n", "", "step.log", "", record},
        {"Log=\"@a;b.log\"\n", "", "a;b.log", "", record},
        {"Log=@$WHO$_$DATE$.log\n", "$WHO$=me", "me_20260305.log", "", record},
        {"Log=@no.log\n", "-Log=\"@switch.log\"", "switch.log", "", record},
        {"", "-Log=@$DATE$.log", "$DATE$.log", "", record},
        {"Log=@no.log\n", "-LogName=@quick_$DATE$.log", "quick_20260305.log", "", record},
        // Logs that exist
        {"Log=@1\n", "", "1", "old\n", "old\n" + record},
        {"Log=@2\n", "", "2", mark, mark + record},
        {"Log=@3\n", "", "3", wide_mark, wide},
        {"Log=@4\nOverwrite=1\n", "", "4", wide_mark, record},
    };
    // clang-format on
    const std::string job =
        "Globals\nDateMacroFormat=YYYYMMDD\nStep #\nSource\nType=ž😀\nSettings\n";
    for (const auto& c : kCases) {
        if (!c.before.empty()) folder_.Write(c.log, c.before);
        EXPECT_FALSE(Run(job + c.settings, {"-silent", c.argument}));
        EXPECT_EQ(folder_.Read(c.log), c.after) << c.log;
    }
    EXPECT_FALSE(folder_.Exists("no.log"));
}

}  // namespace
