#include "check/nearest_name.h"

#include <gtest/gtest.h>

#include "base/utf8.h"

namespace {

TEST(NearestName, IsTheOneWithTheFewestLettersToChange) {
    const std::vector<StringView> keys = {u"Name",  u"Encoding", u"EndOfLine",  u"Header",
                                          u"Query", u"Script",   u"ScriptName", u"A",
                                          u"-Log",  u"-only"};
    const std::pair<const char16_t*, const char16_t*> kCases[] = {
        {u"Nmae", u"Name"},   // swapped neighbours count once
        {u"nAME", u"Name"},   // letter case least
        {u"Nam", u"Name"},    // one left out
        {u"Names", u"Name"},  // one too many
        {u"Encodinx", u"Encoding"},
        {u"Encxdxng", u"Encoding"},  // two of eight
        {u"Exxxding", u""},          // three of eight
        {u"Scriptt", u"Script"},     // nearer than ScriptName
        {u"End", u"EndOfLine"},      // its beginning
        {u"end", u"EndOfLine"},
        {u"En", u""},  // too short for one
        {u"B", u""},   // no letter is right
        {u"a", u"A"},
        {u"-log", u"-Log"},
        {u"-lof", u"-Log"},
        {u"-x", u""},
        {u"", u""},
    };
    for (const auto& [name, expected] : kCases) {
        EXPECT_EQ(ToUtf8(NearestName(name, keys)), ToUtf8(expected)) << ToUtf8(name);
    }
    EXPECT_EQ(NearestName(u"Name", {}), u"");
}

}  // namespace
