#include "files/text.h"

#include <gtest/gtest.h>

TEST(Text, ReplaceAllDoesNotSearchWhatItInserted) {
    String value = u"aaa";
    text::ReplaceAll(value, u"a", u"aa");
    EXPECT_EQ(value, u"aaaaaa");
}

TEST(Text, ReadsALeadingInteger) {
    struct Case {
        StringView value;
        std::int64_t number;
    };
    for (const Case& c : {Case{u"12", 12}, Case{u" -7x", -7}, Case{u"+3abc", 3}, Case{u"", 0},
                          Case{u"abc", 0}, Case{u"99999999999999999999", 0x7FFFFFFFFFFFFFFF}}) {
        EXPECT_EQ(text::ToInteger(c.value), c.number);
    }
}
