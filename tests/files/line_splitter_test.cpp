#include "files/line_splitter.h"

#include <gtest/gtest.h>

#include <tuple>

namespace {

// The fields, "|" after each.
String Split(StringView line, char16_t delimiter, StringView quote, OuterQuotes outer) {
    std::vector<StringView> fields = {u"left", u"over"};
    SplitLine(line, delimiter, quote, outer, fields);
    String joined;
    for (const StringView field : fields) joined.append(field).append(u"|");
    return joined;
}

}  // namespace

TEST(LineSplitter, CutsAtDelimitersOutsideQuotes) {
    // line, delimiter, quote; the fields with OuterQuotes::Keep, and with Strip
    using Case = std::tuple<StringView, char16_t, StringView, StringView, StringView>;
    for (const auto& [line, delimiter, quote, kept, stripped] : {
             Case{u"", u';', u"'", u"|", u"|"},
             Case{u"a\u20AC\u20AC b \u20AC", u'\u20AC', u"'", u"a|| b ||", u"a|| b ||"},
             Case{u"'a;b';''", u';', u"'", u"'a;b'|''|", u"a;b||"},
             Case{u"'a;'';b';c", u';', u"'", u"'a;'';b'|c|", u"a;'';b|c|"},
             // quotes at one end, in the middle, or alone
             Case{u"'a;b", u';', u"'", u"'a;b|", u"'a;b|"},
             Case{u"'", u';', u"'", u"'|", u"'|"},
             Case{u"'''", u';', u"'", u"'''|", u"'|"},
             Case{u"a';'b;'c'x", u';', u"'", u"a';'b|'c'x|", u"a';'b|'c'x|"},
             // only the first character of the quote text counts; without any, quotes stay
             Case{u"'a;b';\"c;d\"", u';', u"'\"", u"'a;b'|\"c|d\"|", u"a;b|\"c|d\"|"},
             Case{u"'a;b';'c'", u';', u"", u"'a|b'|'c'|", u"'a|b'|'c'|"},
             // a delimiter that is the quote cuts where it closes
             Case{u"a'b'c", u'\'', u"'", u"a'b|c|", u"a'b|c|"},
         }) {
        EXPECT_EQ(Split(line, delimiter, quote, OuterQuotes::Keep), kept);
        EXPECT_EQ(Split(line, delimiter, quote, OuterQuotes::Strip), stripped);
    }
}

// Long fields are searched in blocks: every place of a block must see the same rules. Some of the
// filling characters share one byte with the delimiter or the quote.
TEST(LineSplitter, CutsAnywhereInLongLines) {
    const String filler = u":<#!\u013B\u3B00\u3B3B\u2700\u2727\u0127\uFF3B aaaaaaaaaa";
    for (std::size_t length = 0; length <= filler.size(); ++length) {
        const String a = filler.substr(0, length);
        const String b = filler.substr(length);
        for (StringView quote : {u"'", u""})
            EXPECT_EQ(Split(a + u";" + b, u';', quote, OuterQuotes::Keep), a + u"|" + b + u"|");
        const String quoted = a + u"';'" + b;
        EXPECT_EQ(Split(quoted + u";c", u';', u"'", OuterQuotes::Keep), quoted + u"|c|");
    }
}
