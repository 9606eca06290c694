#include "config/configuration.h"

#include <gtest/gtest.h>

#include <tuple>

#include "files/format.h"
#include "support/fixed_clock.h"
#include "support/one_step.h"

using namespace testing_support;

const FixedClock kClock({987, 12, 5, 9, 7, 3});

constexpr KeyTable kKeys({
    {.name = u"Both", .edition1 = u"d", .edition2 = u"d"},
    {.name = u"Global", .kind = KeyKind::Flag, .edition1 = u"1", .edition2 = u"1"},
    {.name = u"Absent", .edition1 = u"d", .edition2 = u"e"},
    {.name = u"Old",
     .kind = KeyKind::Word,
     .words = u"One Two CPnnnn",
     .edition1 = u"One",
     .edition2 = u"Two",
     .macros = Macros::ByEdition,
     .loose_words = 2},
    {.name = u"New",
     .kind = KeyKind::Word,
     .words = u"One Two CPnnnn",
     .edition1 = u"One",
     .edition2 = u"Two",
     .since = Since::Later},
    {.name = u"Unheard", .edition1 = u"d", .edition2 = u"e", .since = Since::Edition2Only},
    {.name = u"Own", .edition1 = u"d", .edition2 = u"d", .own = true},
    {.name = u"Room", .kind = KeyKind::Size, .edition2 = u"2K", .since = Since::Later},
});

TEST(Configuration, AsksTheSectionThenGlobalsThenTheDefault) {
    for (const Section section : {Section::Source, Section::Target, Section::Transform,
                                  Section::Settings, Section::System}) {
        OneStep job(platform::SystemClock(), "Global=\"1\"\nBoth=1\n");
        const SectionSettings settings = job.With(section, {{u"Both", u""}});
        EXPECT_EQ(settings.Text(kKeys[u"Both"]), u"");
        EXPECT_EQ(settings.Text(kKeys[u"Global"]), u"1");
        EXPECT_EQ(settings.Text(kKeys[u"Absent"]), u"d");
        EXPECT_FALSE(settings.Flag(kKeys[u"Global"]));  // booleans keep their quotes
        job.Job().SetCurrentTransform(section == Section::Transform);
        job.Job().Step(0).AddTransform();
        EXPECT_EQ(settings.Text(kKeys[u"Both"]), section == Section::Transform ? u"1" : u"");
        job.Job().SetCurrentStep(1);  // there is none
        EXPECT_EQ(settings.Text(kKeys[u"Both"]), u"d");
        EXPECT_TRUE(settings.Flag(kKeys[u"Global"]));
    }
}

TEST(Configuration, GlobalsStandInForOwnKeysInEditionOneAlone) {
    for (const auto& [edition, value] : {std::pair{"1", u"g"}, {"2", u"d"}}) {
        OneStep job(platform::SystemClock(), std::string("Own=g\nEdition=") + edition + "\n");
        EXPECT_EQ(job.With(Section::Target, {}).Text(kKeys[u"Own"]), value);
    }
}

// What values mean in each edition: a flag, the positions of words (9 for an unknown one), a text
// and a size.
TEST(Configuration, ReadsValuesByTheEdition) {
    struct Case {
        const char* name;
        Settings settings;
        std::string edition1, edition2;
    };
    for (const Case& c : {
             Case{"defaults", {}, "1 0 0 d 0", "1 1 1 e 2048"},
             Case{"empty values",
                  {{u"Global", u""}, {u"Old", u""}, {u"New", u""}, {u"Room", u""}},
                  "0 9 0 d 0",
                  "1 1 1 e 2048"},
             Case{"words in other letters",
                  {{u"Old", u"two"}, {u"New", u"tWO"}},
                  "1 9 1 d 0",
                  "1 1 1 e 2048"},
             Case{"numbered words",
                  {{u"Old", u"CP932"}, {u"New", u"cp1252"}},
                  "1 9 2 d 0",
                  "1 2 2 e 2048"},
             Case{"quotes and words of truth",
                  {{u"Global", u"\"ON\""}, {u"Old", u"\"Two\""}},
                  "0 1 0 d 0",
                  "1 1 1 e 2048"},
             Case{"macros", {{u"Old", u"$M$"}}, "1 9 0 d 0", "1 0 1 e 2048"},
             Case{"a key that edition 1 does not know",
                  {{u"Unheard", u"x"}, {u"Room", u"3k"}},
                  "1 0 0 d 3072",
                  "1 1 1 x 3072"},
         }) {
        for (const std::string edition : {"1", "2"}) {
            OneStep job(platform::SystemClock(), "Edition=" + edition + "\n");
            job.Job().ParseCommandLine({u"$M$=One"});
            const SectionSettings read = job.With(Section::Target, c.settings);
            const String values = Format(u"%d %d %d %s %I64u", read.Flag(kKeys[u"Global"]),
                                         read.Word(kKeys[u"Old"], 9), read.Word(kKeys[u"New"], 9),
                                         read.Text(kKeys[u"Unheard"]), read.Size(kKeys[u"Room"]));
            EXPECT_EQ(ToUtf8(values), edition == "1" ? c.edition1 : c.edition2) << c.name;
        }
    }
}

TEST(Configuration, TakesInTheCommandLineAndItsQuickJob) {
    OneStep job(platform::SystemClock(), "Global=1\n");
    job.With(Section::Source, {{u"DSN", u"file"}, {u"User", u"file"}});
    job.Job().ParseCommandLine(
        {u"-config=a=b", u"-Q", u"-Log=first", u"-Log=last", u"$$=short", u"$X$=macro", u"-DSN=",
         u"-Query=\"q\"", u"-Login=\"l\"", u"-Password=\"p\"", u"-Script=\"s\"", u"-Header=\"h\"",
         u"-Output=\"o\"", u"-LogName=\"n\"", u"-Type=DatabaseQueryToTextFile"});
    String error;
    ASSERT_TRUE(job.Job().AdditonalCmdLine(error, 0));
    using Case = std::tuple<Section, StringView, StringView>;
    for (const auto& [section, name, value] :
         {Case{Section::CommandLine, u"-config", u"a=b"}, Case{Section::CommandLine, u"-Q", u"1"},
          Case{Section::CommandLine, u"-Log", u"last"}, Case{Section::CommandLine, u"$$", u"short"},
          Case{Section::CommandLine, u"$X$", u"-"}, Case{Section::CommandLine, u"Global", u"-"},
          Case{Section::Source, u"DSN", u"file"}, Case{Section::Source, u"Query", u"q"},
          Case{Section::Source, u"User", u"\"l\""}, Case{Section::Source, u"Password", u"\"p\""},
          Case{Section::Source, u"QueryFile", u"s"}, Case{Section::Target, u"Header", u"h"},
          Case{Section::Target, u"Name", u"\"o\""}, Case{Section::Settings, u"Log", u"n"}})
        EXPECT_EQ(job.Job().GetValue(section, name, Quotes::Keep, u"-"), value);
}

TEST(Configuration, DateAndTimeMacrosFollowTheirLayouts) {
    OneStep job(kClock, "DateMacroFormat=wrong\n");
    using Case = std::tuple<String, String, StringView>;
    for (const auto& [date, time, result] :
         {Case{u"YYYY-MM-DD", u"HH:MM:SS", u"0987-12-05 09:07:03 0987-12-05"},
          Case{u"\"DD.DD\"", u"\"HHHH\"", u"05.05 0909 05.05"},
          Case{u"YYYYYY_YY_D_dd", u"SSS_H_hh", u"0987YY_YY_D_dd 03S_H_hh 0987YY_YY_D_dd"},
          Case{u"HHMMSS", u"YYYYMMDD", u"HH12SS YYYY07DD HH12SS"},
          Case{u"$DATE$", u"$DATE$", u"$DATE$ $DATE$ $DATE$"}, Case{u"", u"", u"  "}}) {
        job.With(Section::Settings, {{u"DateMacroFormat", date}, {u"TimeMacroFormat", time}});
        String value = u"$DATE$ $TIME$ $DATE$";
        job.Job().ResolveMacros(value);
        EXPECT_EQ(value, result);
    }
}

TEST(Configuration, MacrosAreReplacedInTheirOrder) {
    using Case = std::tuple<std::vector<String>, String, StringView>;
    for (auto [arguments, value, result] :
         {Case{{u"$A$=x"}, u"$A$ $A$$a$ $A", u"x x$a$ $A"},
          Case{{u"$A$=1$B$", u"$B$=2"}, u"$A$", u"12"},
          Case{{u"$B$=2", u"$A$=1$B$"}, u"$A$", u"1$B$"}, Case{{u"$A$=$A$$A$"}, u"$A$", u"$A$$A$"},
          Case{{u"$A$=first", u"$A$=second"}, u"$A$", u"first"},
          Case{{u"$A$", u"$B$=", u"$$=x"}, u"$A$[$B$]$$", u"1[]$$"},
          Case{{u"$F$=$TABLE$_$DATE$", u"$0987$=wrong"}, u"$F$.txt", u"A$DATE$_0987.txt"}}) {
        OneStep job(kClock, "DateMacroFormat=YYYY\n");
        job.With(Section::Source, {{u"$TABLE$", u"A$DATE$"}});
        job.Job().ParseCommandLine(arguments);
        job.Job().ResolveAllMacros(value);
        EXPECT_EQ(value, result);
    }
}
