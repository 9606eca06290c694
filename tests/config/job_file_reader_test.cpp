#include "config/configuration.h"

#include <gtest/gtest.h>

#include <utility>

#include "base/utf8.h"
#include "files/format.h"
#include "files/text.h"
#include "platform/environment.h"
#include "support/collecting_logger.h"
#include "support/scratch.h"

namespace {

using Case = std::pair<std::string, String>;

const String kNoStep = u"Incorrect configuration file. 'Step #' clause expected.";
const String kSection = u"'. 'Source','Target' or 'Setting' clause expected. Line ";
const String kItem = u"'. name=value format expected. Line ";
String Wrong(StringView item, const String& wanted, int line) {
    return Format(u"Incorrect configuration file item: '%s%s%d.", item, wanted, line);
}

// Reads a job in which "<" stands for the folder: its listing, items with "|" behind them, or the
// error, with "<" for the folder again.
String OutcomeOf(const testing_support::ScratchFolder& folder, std::string job) {
    const String here = folder.Path() + u"/";
    for (std::size_t at; (at = job.find('<')) < job.size();) job.replace(at, 1, ToUtf8(here));
    folder.Write("job", job);
    Configuration configuration;
    testing_support::CollectingLogger listing;
    String outcome;
    if (configuration.Read(outcome, folder.Path("job"))) {
        configuration.Globals().Dump(outcome, u"globals", listing);
        configuration.Print(outcome, listing);
    }
    for (const String& line : listing.Messages())
        outcome.append(text::Trim(line, text::kBlanks)).append(u"|");
    for (const StringView separator : {u"/", u"\\"})
        text::ReplaceAll(outcome, folder.Path() + String(separator), u"<");
    return outcome;
}

}  // namespace

TEST(JobFile, BecomesAListingOrAnError) {
    const testing_support::ScratchFolder folder;
    folder.Write("items", "\xBF=1\nb=2\n");
    folder.Write("step", "Step 2\nTarget\n");
    for (const auto& [job, expected] : {
             // errors at the start, after a step head, and among items
             Case{"step #1\n", kNoStep},
             Case{"Step \t\n", kNoStep},
             Case{"Step 1\nSetting\n", Wrong(u"Setting", kSection, 2)},
             Case{"Step 1\nStep 2\nSource\n", Wrong(u"Step 2", kSection, 2)},
             Case{"Globals\nStepwise=1\nc=d\n", Wrong(u"c=d", kSection, 3)},
             Case{"\xEF\xBB\xBFStep \xE9\n\xE9\n", Wrong(u"\u00E9", kSection, 2)},
             Case{"Step 1\nSource\nitem ; a=b\n", Wrong(u"item", kItem, 3)},
             Case{"Step 1\nSource\ntarget\n", Wrong(u"target", kItem, 3)},
             Case{"Step 1\nSource\n @include x\n", Wrong(u"@include x", kItem, 3)},
             Case{"; a\r\n\r\n#\r\nStep #1\r\n\t\r\n Source\r\n\r\nb\r\n", Wrong(u"b", kItem, 8)},
             // steps and sections
             Case{"\xEF\xBB\xBF", u""},
             Case{"\t Globals \t\nSource ; none\nA=\xC3\xA9", u"globals.A=\u00C3\u00A9|"},
             Case{"Step 1\nSource ; x\na=1\n\tTarget\nb=2\nSource\na=3\nc=4",
                  u"Step #0|source.a=3|source.c=4|target.b=2|"},
             Case{"Step 1\nTransform\na=1\nTransform\na=2\nSettings\na=3\nStep\nSystem\na=4",
                  u"Step #0|transform0.a=1|transform1.a=2|settings.a=3|Step #1|system.a=4|"},
             // comments
             Case{"Globals\na=b#c\n  d \t=\t e=f = \t;", u"globals.a=b|globals.d=e=f =|"},
             Case{"Globals\na=\"b;c\" ; d\ne='f;g'#h", u"globals.a=\"b;c\"|globals.e='f;g'|"},
             Case{"Globals\na=\"it's;b\";c\nd='\"';e", u"globals.a=\"it's;b\"|globals.d='\"'|"},
             Case{"Globals\na=it's;open\nb=\"c\";\"d\"", u"globals.a=it's;open|globals.b=\"c\"|"},
             // includes; "<" stands for the folder
             Case{"Step 1\nSource\n@include \"<items\"\nc=3\n@include=<step\nd=4\n",
                  u"Step #0|source.\u00BF=1|source.b=2|source.c=3|Step #1|target.d=4|"},
             Case{"Step 1\nSource\n@include <items\nitem\n", Wrong(u"item", kItem, 5)},
             Case{"@include", u"@include statement. '' file is not accessible.\n"},
             Case{"@include \"", u"@include statement. '\"' file is not accessible.\n"},
         }) {
        EXPECT_EQ(OutcomeOf(folder, job), expected) << job;
    }
}

TEST(JobFile, OfEditionTwoIsReadWholeAndStrictly) {
    const testing_support::ScratchFolder folder;
    folder.Write("inner", "b=2\r\n\r\n; c=3\n");
    folder.Write("outer", "@include " + ToUtf8(folder.Path("inner")) + "\nd=\xC5\xBB");
    folder.Write("loop", "\n@include " + ToUtf8(folder.Path() + u"/loop") + "\n");
    folder.Write("other-name", "@include " + ToUtf8(folder.Path()) + "/./other-name\n");
    folder.Write("latin", "\n\ne=\xE9\n");
    const std::string globals = "Globals\n\nEdition=2\n";
    for (const auto& [job, expected] : {
             // comments begin behind a blank or at the start, includes go on, lines may be empty
             Case{"a=b;c#d ;e\n\n#f\n;g\nh='i ;j' #k\n@include <outer\n",
                  u"globals.Edition=2|globals.a=b;c#d|globals.h='i "
                  u";j'|globals.b=2|globals.d=\u017B|"},
             Case{"Step #1\nSource\n@include <inner\n\nTransform\na=;\n",
                  u"globals.Edition=2|Step #0|source.b=2|transform0.a=;|"},
             // mistakes name the file and its own line
             Case{"Step 1\nSource\n@include <inner\nno item\n",
                  u"<job:7: " + Wrong(u"no item", kItem, 7)},
             Case{"@include <gone\n",
                  u"<job:4: @include statement. '<gone' file is not accessible."},
             Case{"@include <latin\n",
                  u"<job:4: Error loading configuration file: File '<latin', line 3: the bytes are "
                  u"not valid UTF-8."},
             Case{"@include <loop\n",
                  u"<loop:2: @include statement. '<loop' includes itself: '<job' -> '<loop' -> "
                  u"'<loop'."},
             Case{"@include <other-name\n",
                  u"<other-name:1: @include statement. '<./other-name' includes itself: '<job' -> "
                  u"'<other-name' -> '<./other-name'."},
             Case{"Edition=3\n", u"Edition '3' is not known. Known are 1 and 2."},
         }) {
        EXPECT_EQ(OutcomeOf(folder, globals + job), expected) << job;
    }
    // Sixteen files deep is as far as includes go.
    for (int depth = 1; depth <= 17; ++depth) {
        folder.Write(std::to_string(depth),
                     "@include " + ToUtf8(folder.Path(std::to_string(depth + 1))) + "\n");
    }
    folder.Write("17", "a=b\n");
    EXPECT_TRUE(OutcomeOf(folder, globals + "@include <2\n").ends_with(u"globals.a=b|"));
    EXPECT_TRUE(
        OutcomeOf(folder, globals + "@include <1\n")
            .starts_with(u"<16:1: @include statement. '<17' lies more than 16 files deep: "));
}

TEST(JobFile, TakesMacrosFromTheEnvironmentAfterThoseOfTheCommandLine) {
    const testing_support::ScratchFolder folder;
    folder.Write("job", "Globals\nenvironment=\"QUILLON_NOT_SET, PATH\"\nEnvironment=NAME");
    Configuration configuration;
    configuration.ParseCommandLine({u"$A$=[$PATH$$QUILLON_NOT_SET$]"});
    String error;
    ASSERT_TRUE(configuration.Read(error, folder.Path("job")));
    String value = u"$A$$NAME$$path$";
    configuration.ResolveUserMacros(value);
    const String path = platform::EnvironmentVariable(u"PATH");
    EXPECT_EQ(value, Format(u"[%s$QUILLON_NOT_SET$]$NAME$$path$", path));
}
