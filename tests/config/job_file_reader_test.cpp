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

}  // namespace

TEST(JobFile, BecomesAListingOrAnError) {
    const testing_support::ScratchFolder folder;
    folder.Write("items", "\xBF=1\nb=2\n");
    folder.Write("step", "Step 2\nTarget\n");
    const std::string here = ToUtf8(folder.Path()) + "/";
    for (auto [job, expected] : {
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
        for (std::size_t at; (at = job.find('<')) < job.size();) job.replace(at, 1, here);
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
        EXPECT_EQ(outcome, expected) << job;
    }
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
