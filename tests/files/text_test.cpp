#include "files/text.h"

#include <gtest/gtest.h>

#include <tuple>

TEST(Text, ReplaceAllDoesNotSearchWhatItInserted) {
    using Case = std::tuple<String, StringView, StringView, StringView>;
    for (auto [value, from, to, result] :
         {Case{u"aaa", u"a", u"aa", u"aaaaaa"}, Case{u"aaaa!", u"aa", u"a", u"aa!"},
          Case{u"xaby", u"ab", u"", u"xy"}, Case{u"aabb", u"ab", u"", u"ab"},
          Case{u"abc", u"", u"x", u"abc"}, Case{u"abc", u"B", u"x", u"abc"}}) {
        text::ReplaceAll(value, from, to);
        EXPECT_EQ(value, result);
    }
}

TEST(Text, ReadsALeadingInteger) {
    constexpr std::int64_t kMax = 0x7FFFFFFFFFFFFFFF;
    using Case = std::pair<StringView, std::int64_t>;
    for (const auto& [value, number] :
         {Case{u"12", 12}, Case{u" -7x", -7}, Case{u"\t5", 5}, Case{u"+3abc", 3}, Case{u"007", 7},
          Case{u"12 34", 12}, Case{u"", 0}, Case{u"abc", 0}, Case{u"-", 0}, Case{u"- 5", 0},
          Case{u"\uFF11", 0}, Case{u"9223372036854775807", kMax},
          Case{u"9223372036854775808", kMax}, Case{u"99999999999999999999", kMax},
          Case{u"-9223372036854775808", -kMax - 1}, Case{u"-9223372036854775809", -kMax - 1}})
        EXPECT_EQ(text::ToInteger(value), number) << testing::PrintToString(value);
}

TEST(Text, StripsOnePairOfQuotesAndIgnoresTheCaseOfTheLettersAToZ) {
    EXPECT_EQ(text::StripQuotes(u"\"\"a\"\""), u"\"a\"");
    for (StringView kept : {u"", u"\"", u"\"a", u"a\"", u"'a'"})
        EXPECT_EQ(text::StripQuotes(kept), kept);
    EXPECT_TRUE(text::EqualsIgnoringCase(u"AZaz@[`{", u"azAZ@[`{"));
    EXPECT_FALSE(text::EqualsIgnoringCase(u"@", u"`") || text::EqualsIgnoringCase(u"[", u"{"));
    EXPECT_FALSE(text::EqualsIgnoringCase(u"\u212A", u"k"));  // the Kelvin sign
}
