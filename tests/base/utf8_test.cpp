#include "base/utf8.h"

#include <gtest/gtest.h>

#include <utility>

// The first and last character of every length, the edges of the surrogates, and a mixture.
TEST(Utf8, ConvertsBothWays) {
    using Case = std::pair<StringView, std::string_view>;
    // clang-format off
    for (const auto& [text, bytes] : {
        Case{u"\u007F", "\x7F"}, Case{u"\u0080", "\xC2\x80"}, Case{u"\u07FF", "\xDF\xBF"},
        Case{u"\u0800", "\xE0\xA0\x80"}, Case{u"\uFFFF", "\xEF\xBF\xBF"},
        Case{u"\uD7FF", "\xED\x9F\xBF"}, Case{u"\uE000", "\xEE\x80\x80"},
        Case{u"\uFEFF", "\xEF\xBB\xBF"}, Case{u"\U0010FFFF", "\xF4\x8F\xBF\xBF"},
        Case{u"\U00010000", "\xF0\x90\x80\x80"}, Case{u"\U00010080", "\xF0\x90\x82\x80"},
        Case{u"a\u00E9\u20AC\U0001F600z", "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z"}}) {
        // clang-format on
        String decoded = u"old";
        EXPECT_TRUE(FromUtf8(bytes, decoded));
        EXPECT_EQ(decoded, text);
        EXPECT_EQ(FromNativeBytes(bytes), text);
        EXPECT_EQ(ToNativeBytes(text), bytes);
        EXPECT_EQ(ToUtf8(text), bytes);
    }
}

// ASCII is taken in blocks: every place of a block must see the same rules.
TEST(Utf8, ConvertsAnywhereInLongTexts) {
    const std::string filler(70, '\x7F');
    const String wide_filler(70, u'\x7F');
    for (std::size_t i = 0; i <= filler.size(); ++i) {
        std::string bytes = filler;
        bytes.insert(i, "\xC2\x80");
        String text = wide_filler;
        text.insert(i, 1, u'\u0080');
        String decoded;
        EXPECT_TRUE(FromUtf8(bytes, decoded));
        EXPECT_EQ(decoded, text);
        EXPECT_EQ(ToUtf8(text), bytes);
        bytes[i] = '\xFF';
        EXPECT_FALSE(FromUtf8(bytes, decoded));
        EXPECT_EQ(decoded, wide_filler.substr(0, i));
    }
}

TEST(Utf8, WritesUnpairedSurrogatesAsTheReplacementCharacter) {
    EXPECT_EQ(ToUtf8(u"\xD83Dx\xDE00\xD83D"), "\xEF\xBF\xBDx\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf8(u"\xD83D\xD83D\xDE00"), "\xEF\xBF\xBD\xF0\x9F\x98\x80");
}

TEST(Utf8, RefusesInvalidBytesButNamesKeepThem) {
    // clang-format off
    for (const std::string_view invalid : {
        "\x80", "\xBF", "\xF5\x80\x80\x80", "\xFE", "\xFF",          // begin no character
        "\xC0\x80", "\xC1\xBF", "\xE0\x80\x80", "\xE0\x9F\xBF",      // overlong
        "\xF0\x80\x80\x80", "\xF0\x8F\xBF\xBF",
        "\xED\xA0\x80", "\xED\xB2\x80", "\xED\xBF\xBF",              // surrogates
        "\xF4\x90\x80\x80",                                          // beyond the last character
        "\xC3", "\xE2\x82", "\xF0\x9F\x98",                          // cut short
        "\xC3(", "\xE2(\xA1", "\xE2\x82(", "\xF0\x9F\x98(",          // wrong continuation
        "\xF0\x90\x82\x80\x80"}) {                                   // one too many
        // clang-format on
        const std::string bytes = std::string("ab").append(invalid).append("c").append(invalid);
        String decoded;
        EXPECT_FALSE(FromUtf8(bytes, decoded)) << testing::PrintToString(invalid);
        EXPECT_FALSE(FromUtf8(invalid, decoded)) << testing::PrintToString(invalid);
        EXPECT_EQ(ToNativeBytes(FromNativeBytes(bytes)), bytes);
    }
    EXPECT_EQ(FromNativeBytes("\xFF-\xC3\xA9\xC3"), (String{0xDCFF, u'-', 0xE9, 0xDCC3}));
}
