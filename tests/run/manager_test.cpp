#include "run/manager.h"

#include <filesystem>
#include <string>

#include "base/activity_trail.h"
#include "run/job_fixture.h"
#include "run/logger_file.h"
#include "support/collecting_logger.h"
#include "support/sqlite.h"

namespace {

using Texts = std::vector<std::string>;

// Standard output can be caught only where it is a plain descriptor.
constexpr bool kCatchesOutput = std::filesystem::path::preferred_separator == '/';

class ManagerTest : public testing_support::JobTest {
protected:
    void SetUp() override { folder_.Write("in.txt", "1\n2\n3\n4\n5\n"); }

    // Runs a job and gives what standard output got.
    std::string Output(std::string_view job, std::initializer_list<std::string> arguments,
                       bool succeeds) {
        testing::internal::CaptureStdout();
        const bool succeeded = Run(job, arguments);
        std::string output = testing::internal::GetCapturedStdout();
        EXPECT_EQ(succeeded, succeeds) << ToUtf8(error_);
        return output;
    }
};

// ---- Statistics ----

TEST_F(ManagerTest, WritesStatisticsOfEachStep) {
    clock_.SetTicks({1000, 1500, 2750, 4000, 5000, 5001, 7500});
    folder_.Write("long.txt", std::string(3 * 1024 * 1024 - 2, 'x') + "\n");
    folder_.Write("comments.txt", "x\n#1\n");
    EXPECT_TRUE(Run(CopyStep("long.txt", "out.txt") + CopyStep("in.txt", "out2.txt") +
                        "Step #3\nSource\nType=TextFile\nName=@comments.txt\nCommentChar=\"#\"\n"
                        "Target\nType=TextFile\nName=@out3.txt\n",
                    {"-Log=@log.txt"}));
    EXPECT_EQ(
        Log(),
        Record("\nStep #0: 1 items done, total 3.000 seconds, processing 1.250 seconds.") +
            Record("3072 Kbytes written or  1.00 Mb/sec.") +
            Record("\nStep #1: 5 items done, total 6.500 seconds, processing 0.001 seconds.") +
            Record("0 Kbytes written or  0.00 Mb/sec.") +
            Record("\nStep #2: 0 items done, total 6.500 seconds, processing 0.000 seconds."));
    EXPECT_EQ(folder_.Read("out2.txt"), "1\r\n2\r\n3\r\n4\r\n5\r\n");
    EXPECT_EQ(CurrentState(), u"");
}

TEST_F(ManagerTest, TellsNoSpeedOfShortRuns) {
    for (const std::uint64_t end : {25u, 26u}) {
        clock_.SetTicks({0, 1, 2, end});
        ASSERT_TRUE(
            Run(CopyStep("in.txt", "out.txt"), {"-Log=@log" + std::to_string(end) + ".txt"}));
    }
    EXPECT_EQ(folder_.Read("log25.txt"),
              Record("\nStep #0: 5 items done, total 0.025 seconds, processing 0.001 seconds."));
    EXPECT_EQ(folder_.Read("log26.txt"),
              Record("\nStep #0: 5 items done, total 0.026 seconds, processing 0.001 seconds.") +
                  Record("0 Kbytes written or  0.00 Mb/sec."));
}

TEST_F(ManagerTest, RunsStepWithoutTarget) {
    const std::string job =
        CopyStep("in.txt", "out.txt") + "Step #2\nSource\nType=TextFile\nName=@in.txt\nHeader=0\n";
    const std::string warning =
        Record("Warning (step 1): no target defined properly. Execute the source only.");
    ASSERT_TRUE(RunSilently(job));
    EXPECT_EQ(Log(), warning) << "a warning is not silenced";
    clock_.SetTicks({0, 0, 0, 0, 0, 0, 90});
    ASSERT_TRUE(Run(job, {"-Log=@log2.txt"}));
    EXPECT_EQ(
        folder_.Read("log2.txt"),
        Record("\nStep #0: 5 items done, total 0.000 seconds, processing 0.000 seconds.") +
            warning +
            Record("\nStep #1: 5 items done, total 0.090 seconds, processing 0.000 seconds."));
}

TEST_F(ManagerTest, ShowsProgressBetweenBannerAndStatistics) {
    if (!kCatchesOutput) GTEST_SKIP() << "standard output cannot be caught here";
    const std::string job = CopyStep("in.txt", "out.txt", "ShowProgress=2 rows\n");
    const std::string output = Output(job, {}, true);
    const std::string end =
        "\n..\nStep #0: 5 items done, total 0.000 seconds, processing 0.000 seconds.\n";
    EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), 3) << output;
    EXPECT_TRUE(output.ends_with(end)) << output;
    EXPECT_EQ(Output(job, {"-silent"}, true), "");
    for (const char* interval : {"", "x", "-1", "6"}) {
        SCOPED_TRACE(interval);
        const std::string plain =
            Output(CopyStep("in.txt", "out.txt", "ShowProgress=" + std::string(interval) + "\n"),
                   {"-Log=@log.txt"}, true);
        EXPECT_EQ(std::count(plain.begin(), plain.end(), '\n'), 1) << plain;
        EXPECT_TRUE(plain.ends_with("\n")) << plain;
    }
}

// ---- Failures ----

TEST_F(ManagerTest, StopsOrGoesOnAfterFailure) {
    folder_.Write("empty.txt", "");
    folder_.MakeFolder("folder");
    const std::string source = "Step #1\nSource\nType=TextFile\nHeader=0\nName=@in.txt\n";
    const std::string target = "Target\nType=TextFile\nName=@out.txt\n";
    const struct {
        const char* name;
        std::string step;
        std::string message;
        const char* done;   // out.txt when the run goes on, null for no file
        bool more = false;  // the system's words follow the message
    } kFailures[] = {
        {"source type", "Step #1\nSource\nType=Nope\n" + target,
         "Incorrect type for source 'Nope'.", nullptr},
        {"source open", "Step #1\nSource\nType=TextFile\n" + target,
         "'Name' parameter not specified.", ""},
        {"source without a first line",
         "Step #1\nSource\nType=TextFile\nName=@empty.txt\n" + target, "", ""},
        {"target type", source + "Target\nType=Nope\nName=@out.txt\n",
         "Incorrect type for target 'Nope'.", nullptr},
        {"target open", source + "Target\nType=TextFile\nName=@folder\n",
         "Could not open file for writing: ", nullptr, true},
        {"transformer", source + target + "Transform\nType=Nope\n",
         "Transformer type 'Nope' is not supported yet", "1\r\n2\r\n3\r\n4\r\n5\r\n"},
        {"system step", "Step #1\nSystem\nCommand=Nope\n",
         "System step contains unsupported command 'Nope'", nullptr},
    };
    const auto scratch = std::filesystem::path(folder_.Path());
    for (const auto& c : kFailures) {
        const std::string steps = c.step + CopyStep("in.txt", "next.txt");
        for (const char* stop : {"", "StopOnError=1\n", "StopOnError=false\n"}) {
            SCOPED_TRACE(std::string(c.name) + " " + stop);
            const bool goes_on = std::string_view(stop).ends_with("false\n");
            for (const char* file : {"out.txt", "next.txt", "log.txt"})
                std::filesystem::remove(scratch / file);
            EXPECT_EQ(RunSilently(std::string("Globals\n") + stop + steps), goes_on);
            EXPECT_EQ(folder_.Exists("next.txt"), goes_on);
            const std::string error = ToUtf8(error_);
            if (goes_on) {
                EXPECT_EQ(error, "");
                EXPECT_EQ(folder_.Exists("out.txt"), c.done != nullptr);
                if (c.done) {
                    EXPECT_EQ(folder_.Read("out.txt"), c.done);
                }
            } else {
                EXPECT_EQ(error.substr(0, c.message.size()), c.message);
                EXPECT_EQ(error.size() > c.message.size(), c.more) << error;
            }
            const std::string log = Log();
            const std::string record = c.message.empty() ? "" : Record(c.message);
            if (c.more) {
                EXPECT_TRUE(log.starts_with(record.substr(0, record.size() - 4))) << log;
                EXPECT_EQ(log.find('>'), log.rfind('>')) << log;
            } else {
                EXPECT_EQ(log, record) << "told of once";
            }
        }
    }
    EXPECT_EQ(CurrentState(), u"");
}

TEST_F(ManagerTest, EndsWhenRowCannotBeWritten) {
    folder_.Write("wide.txt", "a\tb\n1\t2\n3\t4\t5\n6\t7\n");
    folder_.Write("wider.txt", "a\tb\n1\t2\t3\n4\t5\n");
    const std::string options = "Globals\nStopOnError=0\n";
    const auto step = [](const std::string& from, const std::string& to) {
        return "Step #\nSource\nType=TextFile\nName=@" + from +
               "\nTarget\nType=TextFile\nName=" + to + "\n";
    };
    EXPECT_TRUE(RunSilently(options + step("wide.txt", "@out.txt")));
    EXPECT_EQ(folder_.Read("out.txt"), "1\t2\r\n3\t4\r\n6\t7\r\n");
    EXPECT_FALSE(
        RunSilently(options + step("wider.txt", "@out2.txt") + CopyStep("in.txt", "next.txt")));
    EXPECT_EQ(ToUtf8(error_), "TextFile: Broken row structure [Values: 3, Structure: 2 for '']");
    EXPECT_EQ(Log(), Record(ToUtf8(error_)));
    EXPECT_FALSE(folder_.Exists("next.txt"));
    EXPECT_EQ(CurrentState(), u"");
    if (std::filesystem::path::preferred_separator == '/') {
        EXPECT_FALSE(
            RunSilently(options + step("wide.txt", "/dev/full") + CopyStep("in.txt", "next.txt")));
        EXPECT_FALSE(folder_.Exists("next.txt"));
    }
}

TEST_F(ManagerTest, SaysOnConsoleWhatFailsBeforeAStepHasItsLog) {
    if (!kCatchesOutput) GTEST_SKIP() << "standard output cannot be caught here";
    const std::string job = "Globals\nStopOnError=0\n" + CopyStep("in.txt", "out.txt");
    const struct {
        const char* name;
        std::string_view job;
        std::initializer_list<std::string> arguments;
        std::string message;
    } kCases[] = {
        {"no job file",
         job,
         {"-silent", "-config=\"@missing.qpr\""},
         "Could not find or load configuration file '" + ToUtf8(Here("@missing.qpr")) +
             "'. Use -config command line switch to define it. Default name is 'quillon.qpr'."},
        {"bad job file",
         "Nothing\n",
         {"-silent"},
         "Incorrect configuration file. 'Step #' clause expected."},
        {"bad quick job",
         job,
         {"-silent", "-Type=Any"},
         "Unsupported value 'Any' of -Type parameter."},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Output(c.job, c.arguments, false), c.message + "\n");
        EXPECT_EQ(ToUtf8(error_), c.message);
        EXPECT_EQ(CurrentState(), u"");
    }
    EXPECT_FALSE(folder_.Exists("out.txt"));
    EXPECT_EQ(Output("Globals\nX=1\n", {"-silent"}, true), "") << "a job may have no steps";
}

// ---- Logs ----

TEST_F(ManagerTest, NamesItsLog) {
    folder_.Write("in.txt", "1\n");
    const std::string globals = "Globals\nDateMacroFormat=YYYYMMDD\nTimeMacroFormat=HH.MM\n";
    const std::string record =
        Record("\nStep #0: 1 items done, total 0.000 seconds, processing 0.000 seconds.");
    const struct {
        const char* name;
        std::string settings;
        std::initializer_list<std::string> arguments;
        const char* log;
    } kCases[] = {
        {"of the step", "Log=@step.log\n", {}, "step.log"},
        {"quoted", "Log=\"@a;b.log\"\n", {}, "a;b.log"},
        {"with macros", "Log=@$WHO$_$DATE$_$TIME$.log\n", {"$WHO$=me"}, "me_20260305_09.07.log"},
        {"switch first", "Log=@no.log\n", {"-Log=@switch.log"}, "switch.log"},
        {"switch alone, quoted", "", {"-Log=\"@alone.log\""}, "alone.log"},
        {"switch unchanged", "", {"-Log=@$DATE$.log"}, "$DATE$.log"},
        {"quick job", "Log=@no.log\n", {"-LogName=@quick_$DATE$.log"}, "quick_20260305.log"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_TRUE(Run(globals + CopyStep("in.txt", "out.txt", c.settings), c.arguments));
        EXPECT_EQ(folder_.Read(c.log), record);
    }
    EXPECT_FALSE(folder_.Exists("no.log"));
}

TEST_F(ManagerTest, AppendsToLogUnlessItIsToBeOverwritten) {
    folder_.Write("in.txt", "1\n");
    folder_.Write("a.log", "old\n");
    folder_.Write("b.log", "old\n");
    const auto record = [](char step) {
        return Record(std::string("\nStep #") + step +
                      ": 1 items done, total 0.000 seconds, processing 0.000 seconds.");
    };
    EXPECT_TRUE(Run(CopyStep("in.txt", "out.txt", "Log=@a.log\n") +
                    CopyStep("in.txt", "out.txt", "Log=@a.log\n") +
                    CopyStep("in.txt", "out.txt", "Log=@b.log\nOverwrite=1\n")));
    EXPECT_EQ(folder_.Read("a.log"), "old\n" + record('0') + record('1'));
    EXPECT_EQ(folder_.Read("b.log"), record('2'));
}

TEST_F(ManagerTest, EndsWithoutAWordWhenLogCannotBeOpened) {
    const std::string job =
        "Globals\nStopOnError=0\n" + CopyStep("in.txt", "out.txt", "Log=@no/l\n");
    std::string output;
    if (kCatchesOutput)
        output = Output(job, {"-silent"}, false);
    else
        EXPECT_FALSE(Run(job, {"-silent"}));
    EXPECT_EQ(output, "");
    const std::string error = ToUtf8(error_);
    const std::string head = "Could not open log file '" + ToUtf8(Here("@no/l")) +
                             "' for writing [Could not open file for writing: ";
    EXPECT_EQ(error.substr(0, head.size()), head);
    EXPECT_TRUE(error.ends_with("].")) << error;
    EXPECT_GT(error.size(), head.size() + 2);
    EXPECT_FALSE(folder_.Exists("out.txt"));
    EXPECT_EQ(CurrentState(), u"");
}

TEST_F(ManagerTest, OpensLogsOneAfterTheOther) {
    Manager manager(clock_);
    EXPECT_TRUE(manager.OpenLog(error_, u"", false)) << "the console";
    EXPECT_TRUE(manager.OpenLog(error_, folder_.Path("a.log"), false));
    EXPECT_TRUE(folder_.Exists("a.log"));
    EXPECT_EQ(folder_.Read("a.log"), "");
    // A name in force stays until a step names another.
    EXPECT_TRUE(manager.OpenLog(error_, folder_.Path("b.log"), false));
    EXPECT_FALSE(folder_.Exists("b.log"));
    EXPECT_EQ(error_, u"");

    Manager other(clock_);
    EXPECT_FALSE(other.OpenLog(error_, folder_.Path("no/l.log"), true));
    EXPECT_TRUE(error_.starts_with(u"Could not open log file '" + folder_.Path("no/l.log") +
                                   u"' for writing [Could not open file for writing: "))
        << ToUtf8(error_);
}

TEST_F(ManagerTest, ReportsErrors) {
    testing_support::CollectingLogger logger;
    String error = u"old";
    EXPECT_FALSE(Manager::ReportError(error, logger, u""));
    EXPECT_EQ(error, u"old");
    EXPECT_FALSE(Manager::ReportError(error, logger, u"new"));
    EXPECT_EQ(error, u"new");
    EXPECT_EQ(logger.Messages(), (std::vector<String>{u"old", u"new"}));
    EXPECT_EQ(logger.LastLevel(), 0);
}

TEST_F(ManagerTest, LogFilesHoldUtf8OrWhatTheirMarkSays) {
    using namespace std::string_literals;
    const struct {
        const char* name;
        std::string before;
        bool overwrite;
        std::string after;
    } kCases[] = {
        {"new.log", "", false, Record("ž😀")},
        {"plain.log", "old\n", false, "old\n" + Record("ž😀")},
        {"gone.log", "\xFF\xFEold", true, Record("ž😀")},
        {"utf8.log", "\xEF\xBB\xBF", false, "\xEF\xBB\xBF" + Record("ž😀")},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        if (!c.before.empty()) folder_.Write(c.name, c.before);
        Quillon::LoggerFile log(clock_);
        String error;
        ASSERT_TRUE(log.Open(error, folder_.Path(c.name), c.overwrite));
        EXPECT_TRUE(log.Write(error, u"ž😀", 0));
        EXPECT_TRUE(log.Close());
        EXPECT_FALSE(log.Write(error, u"closed", 0));
        EXPECT_FALSE(log.Close());
        EXPECT_EQ(folder_.Read(c.name), c.after);
    }
    folder_.Write("utf16.log", "\xFF\xFE"s);
    Quillon::LoggerFile log(clock_);
    String error;
    ASSERT_TRUE(log.Open(error, folder_.Path("utf16.log"), false));
    EXPECT_TRUE(log.Write(error, u"ž", 0));
    EXPECT_TRUE(log.Close());
    EXPECT_TRUE(folder_.Read("utf16.log").ends_with("> \0\x7E\x01\r\0\n\0\r\0\n\0"s.substr(1)));
}

// ---- Quick job ----

TEST_F(ManagerTest, RunsQuickJob) {
    testing_support::RunInSqlite(folder_, "test.db",
                                 u"create table items as select 1 as id, 'a;b' as name");
    const std::string connect =
        "-DSN=" + ToUtf8(testing_support::SqliteConnectString(folder_, "test.db"));
    EXPECT_TRUE(Run("Step #1\n", {"-silent", "-Type=DatabaseQueryToTextFile", connect,
                                  "-Query=\"select * from items\"", "-Output=@out.txt"}))
        << ToUtf8(error_);
    EXPECT_EQ(folder_.Read("out.txt"), "id\tname\r\n1\ta;b\r\n");

    // A switch applies to every step of the job.
    const std::string step =
        "Step #\nSource\nType=DatabaseQuery\nQuery=select 1\nTarget\nType=TextFile\nName=no.txt\n";
    EXPECT_TRUE(Run(step + step, {"-silent", connect, "-Query=select name from items", "-Header=0",
                                  "-Output=@both.txt"}))
        << ToUtf8(error_);
    EXPECT_EQ(folder_.Read("both.txt"), "a;b\r\na;b\r\n");
}

}  // namespace
