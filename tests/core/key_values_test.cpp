#include "core/key_values.h"

#include <gtest/gtest.h>

#include "base/utf8.h"

namespace {

std::string Shown(const std::optional<std::vector<std::size_t>>& numbers) {
    std::string text;
    if (!numbers) return "none";
    for (const std::size_t number : *numbers) text += std::to_string(number) + " ";
    return text;
}

TEST(KeyValues, AreReadStrictly) {
    const struct {
        const char16_t* text;
        std::optional<bool> flag;
        std::optional<std::int64_t> number;
        std::optional<std::uint64_t> size;
        std::string numbers;
    } cases[] = {
        {u"", {}, {}, {}, "none"},
        {u"0", false, 0, 0, "none"},
        {u"1", true, 1, 1, "1 "},
        {u"YES", true, {}, {}, "none"},
        {u"oFF", false, {}, {}, "none"},
        {u"truer", {}, {}, {}, "none"},
        {u"1234567890", {}, 1234567890, 1234567890, "1234567890 "},
        {u"+1", {}, {}, {}, "none"},
        {u"-1", {}, {}, {}, "none"},
        {u"1.0", {}, {}, {}, "none"},
        {u" 1", {}, {}, {}, "1 "},
        {u"9223372036854775806",
         {},
         9223372036854775806,
         9223372036854775806,
         "9223372036854775806 "},
        {u"9223372036854775808", {}, {}, {}, "none"},
        {u"2k", {}, {}, 2048, "none"},
        {u"3M", {}, {}, 3145728, "none"},
        {u"8589934591g", {}, {}, 9223372035781033984, "none"},
        {u"8589934592G", {}, {}, {}, "none"},
        {u"K", {}, {}, {}, "none"},
        {u"1 K", {}, {}, {}, "none"},
        {u"1KB", {}, {}, {}, "none"},
        {u"3, 1 ,\t2", {}, {}, {}, "3 1 2 "},
        {u"1,,2", {}, {}, {}, "none"},
        {u"1,", {}, {}, {}, "none"},
        {u"1,0", {}, {}, {}, "none"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(key_values::Flag(c.text), c.flag) << ToUtf8(c.text);
        EXPECT_EQ(key_values::Number(c.text), c.number) << ToUtf8(c.text);
        EXPECT_EQ(key_values::Size(c.text), c.size) << ToUtf8(c.text);
        EXPECT_EQ(Shown(key_values::Numbers(c.text)), c.numbers) << ToUtf8(c.text);
    }
}

TEST(KeyValues, AreWordsOfTheirKey) {
    constexpr KeySpec kKey{
        .name = u"K", .kind = KeyKind::Word, .words = u"One Two CPnnnn", .loose_words = 2};
    constexpr KeySpec kColumn{.name = u"C", .kind = KeyKind::Column, .words = u"All"};
    constexpr KeySpec kColumns{.name = u"C", .kind = KeyKind::Columns};
    const struct {
        const char16_t* text;
        std::optional<std::size_t> strict, loose;
        bool column, columns;
    } cases[] = {
        {u"One", 0, 0, false, false},        {u"tWO", 1, {}, false, false},
        {u"CP1", 2, {}, false, false},       {u"cp12345", 2, {}, false, false},
        {u"CP123456", {}, {}, false, false}, {u"CP", {}, {}, false, false},
        {u"CP12a", {}, {}, false, false},    {u"XP12", {}, {}, false, false},
        {u"One Two", {}, {}, false, false},  {u"all", {}, {}, true, false},
        {u" 2", {}, {}, true, true},         {u"0", {}, {}, false, false},
        {u"1,2", {}, {}, false, true},       {u"1,x", {}, {}, false, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(key_values::Word(kKey, c.text, true), c.strict) << ToUtf8(c.text);
        EXPECT_EQ(key_values::Word(kKey, c.text, false), c.loose) << ToUtf8(c.text);
        EXPECT_EQ(key_values::IsValid(kKey, c.text), c.strict.has_value()) << ToUtf8(c.text);
        EXPECT_EQ(key_values::IsValid(kColumn, c.text), c.column) << ToUtf8(c.text);
        EXPECT_EQ(key_values::IsValid(kColumns, c.text), c.columns) << ToUtf8(c.text);
    }
    EXPECT_TRUE(key_values::IsValid(kKey, u""));
}

}  // namespace
