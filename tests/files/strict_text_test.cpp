#include "files/strict_text.h"

#include <gtest/gtest.h>

#include <tuple>

#include "support/scratch.h"

using namespace std::string_literals;

TEST(StrictText, TakesValidTextWholeAndNamesTheLineOfAFault) {
    const testing_support::ScratchFolder folder;
    std::string many;
    many.assign(20'000'000, 'x');  // more than the other loaders take
    // clang-format off
    // the file, its text; in place of the text the line of a fault and what the bytes are not
    const std::tuple<std::string, String, String> kCases[] = {
        {"", u"", u""},
        {"\n\ta\t\r\n\n", u"\n\ta\t\r\n\n", u""},
        {"\xC3\xA9\0\n"s, String(u"\u00E9\0\n", 3), u""},
        {"\xEF\xBB\xBF\xE2\x82\xAC\xEF\xBB\xBF", u"\u20AC\uFEFF", u""},  // one mark goes
        {"\xEF\xBB\xBF", u"", u""},
        {"\xFF\xFE" "a\0\n\0\x3D\xD8\0\xDE"s, u"a\n\U0001F600", u""},
        {"\xFE\xFF\0a\0\n\xD8\x3D\xDE\0"s, u"a\n\U0001F600", u""},
        {"\xFE\xFF", u"", u""},
        {many + "\xC3\xA9", String(many.size(), u'x') + u"\u00E9", u""},
        {"a\n\nb\xE9\n", u"", u"line 3: the bytes are not valid UTF-8."},
        {"\xEF\xBB\xBF\xFF", u"", u"line 1: the bytes are not valid UTF-8."},
        {"a\xEF\xBB", u"", u"line 1: the bytes are not valid UTF-8."},
        {many + "\n\xED\xA0\x80", u"", u"line 2: the bytes are not valid UTF-8."},
        {"\xFF\xFE\n\0\x3D\xD8\n\0"s, u"", u"line 2: the bytes are not valid UTF-16."},
        {"\xFE\xFF\xDE\0\0\n"s, u"", u"line 1: the bytes are not valid UTF-16."},
        {"\xFF\xFE" "a\0\n\0b"s, u"", u"line 2: the bytes are not valid UTF-16."},
    };
    // clang-format on
    for (const auto& [bytes, expected, fault] : kCases) {
        SCOPED_TRACE(testing::PrintToString(bytes.substr(0, 30)));
        folder.Write("file", bytes);
        String text = u"old";
        ErrorRecord error;
        EXPECT_EQ(LoadStrictText(error, folder.Path("file"), text), fault.empty());
        EXPECT_TRUE(text == expected);
        const String message = u"File '" + folder.Path("file") + u"', " + fault;
        EXPECT_EQ(error.text, fault.empty() ? u"" : message);
    }
    for (const StringView name : {u"", u"none"}) {
        String text;
        ErrorRecord error;
        EXPECT_FALSE(LoadStrictText(error, String(name), text));
        EXPECT_TRUE(error.text.starts_with(u"Could not open file for reading: ") && error.code);
    }
}

TEST(StrictText, SplitsIntoLines) {
    using Case = std::pair<StringView, std::vector<StringView>>;
    for (const auto& [text, lines] :
         {Case{u"", {}}, Case{u"a", {u"a"}}, Case{u"a\n", {u"a"}}, Case{u"\n", {u""}},
          Case{u"a\n\r\n\nb\r\n", {u"a", u"", u"", u"b"}}, Case{u"a\rb\r\r\n", {u"a\rb\r"}},
          Case{u"\t\n \r", {u"\t", u" \r"}}})
        EXPECT_EQ(SplitIntoLines(text), lines) << testing::PrintToString(text);
}
