#include "core/parameter_set.h"

#include <gtest/gtest.h>

#include "files/format.h"

TEST(ParameterSet, KeepsOneValueForEachNameHoweverManyThereAre) {
    constexpr int kCount = 5000;
    ParameterSet set;
    set.Set(u"first", u"");
    const ParameterSet::Element* first = set.Find(u"first");
    for (int i = 0; i < kCount; ++i) set.Set(Format(u"Name%d", i), Format(u"%d", i));
    for (int i = 0; i < kCount; i += 7) set.Set(Format(u"Name%d", i), u"replaced");
    for (int i = 0; i < kCount; ++i) {
        const String value = set.Get(Format(u"Name%d", i), u"absent");
        ASSERT_EQ(value, i % 7 == 0 ? u"replaced" : Format(u"%d", i));
    }
    EXPECT_EQ(set.Find(u"first"), first);
    EXPECT_EQ(set.Get(u"first", u"absent"), u"");
    for (StringView other :
         {StringView(u"first\0", 6), StringView(u"First"), StringView(u"Name5000")})
        EXPECT_EQ(set.Get(other, u"absent"), u"absent") << testing::PrintToString(other);
}

TEST(ParameterSet, IsTrueForOneAndTrueOnly) {
    for (StringView value : {u"1", u"true", u"TRUE", u"tRuE"}) EXPECT_TRUE(IsTrue(value));
    for (StringView value : {u"", u"0", u"01", u"11", u"yes", u" true", u"truer", u"tru", u"\"1\""})
        EXPECT_FALSE(IsTrue(value)) << testing::PrintToString(value);
}
