#include "files/format.h"

#include <gtest/gtest.h>

#include <limits>

TEST(Format, ReplacesEveryKindOfDirective) {
    EXPECT_EQ(Format(u"%s|%s|%d", StringView(u"\0\u20AC", 2), u"", -5), String(u"\0\u20AC||-5", 6));
    EXPECT_EQ(Format(u"%s|%d%%", u"%d %s %%", 7), u"%d %s %%|7%");
    EXPECT_EQ(Format(u"%d", std::numeric_limits<std::int32_t>::min()), u"-2147483648");
    EXPECT_EQ(Format(u"%u", std::numeric_limits<std::uint32_t>::max()), u"4294967295");
    EXPECT_EQ(Format(u"%I64u", std::numeric_limits<std::uint64_t>::max()), u"18446744073709551615");
    EXPECT_EQ(Format(u"%04d-%02d-%02d", 987, 3, 123), u"0987-03-123");
    EXPECT_EQ(Format(u"&#x%03X;&#x%03X;", 0xE9, 0x20AC), u"&#x0E9;&#x20AC;");
    EXPECT_EQ(Format(u"%3.3f [%5.2f]", 0.0125, 1.5), u"0.013 [ 1.50]");
}
