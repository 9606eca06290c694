#include "consumers/data_consumer.h"

#include <filesystem>

#include "support/target_fixture.h"

namespace {

using namespace std::string_literals;

using Target = testing_support::TargetFixture;

TEST_F(Target, IsMadeByItsType) {
    EXPECT_TRUE(Open(u"", "out.txt", u"TEXTfile"));
    EXPECT_FALSE(Open(u"", "out.txt", u"TextFile "));
    EXPECT_EQ(error_, u"Incorrect type for target 'TextFile '.");
    EXPECT_TRUE(target_ && logger_.Messages().empty());
    EXPECT_TRUE(Open(u"", "out.txt", u""));
    EXPECT_FALSE(target_) << "what was held before goes";
    EXPECT_EQ(logger_.Messages(), std::vector<String>{u"Warning (step 3): no target defined "
                                                      u"properly. Execute the source only."});
}

TEST_F(Target, WritesTextByItsSettings) {
    // clang-format off
    const struct {
        const char16_t* settings;
        const char* before;  // what the file held, where there was one
        const char16_t* set;
        std::string after;
    } kCases[] = {
        {u"", nullptr, u"a|b|c/1|~|/x\r\ny||z", "1\tNULL\t\r\nx\r\ny\t\tz\r\n"},
        {u"EndOfLine=LF|Delimiter=tab", nullptr, u"a|b/1|2", "1\t2\n"},
        {u"EndOfLine=lf|Delimiter=<tab>", nullptr, u"a|b/1|2", "1\t2\r\n"},
        {u"EndOfLine=|Delimiter=TAB", nullptr, u"a|b/1|2", "1TAB2\r\n"},
        // Quotation
        {u"QuotationMode=All|Delimiter=", nullptr, u"a|b/1|2", "12\r\n"},
        {u"QuotationMode=ByValue|Delimiter=::", nullptr, u"a|b|c/:2|\"|3::", ":2::\"::\"3::\"\r\n"},
        {u"QuotationMode=ALWAYS", nullptr, u"a|b|c/~|1\"2|", "\"NULL\"\t\"1\"2\"\t\"\"\r\n"},
        {u"QuotationMode=Always|QuoteChar=<q>", nullptr, u"-|a|-/-|x|-", "<q>x<q>\r\n"},
        // Header and widths
        {u"Header=true|QuotationMode=ByValue|Delimiter=;", nullptr, u"a;b|-", "\"a;b\"\r\n"},
        {u"Header=1", "", u"a/1", "1\r\n"},
        {u"Header=1|Overwrite=1", "old\r\n", u"a/1", "a\r\n1\r\n"},
        {u"Header=1|FixedWidth=1|Delimiter=;|QuotationMode=Always|NullIsEmptyString=1", nullptr,
         u"long|x|y/ab|~|wide", "longxy\r\nab   wide\r\n"},
        // Encodings
        {u"", nullptr, u"a|b/\u00E9|\u20AC", "\xE9\t\xAC\r\n"},
        {u"Encoding=utf8", nullptr, u"a/\u00E9", "\xE9\r\n"},
        {u"Encoding=UTF8", "", u"a/\u00E9", "\xE9\r\n"},
        {u"Encoding=UTF8", "\xFF\xFE", u"a/\u00E9", "\xFF\xFE\xE9\0\r\0\n\0"s},
        {u"Encoding=UTF8", nullptr, u"a/\U0001F600", "\xEF\xBB\xBF\xF0\x9F\x98\x80\r\n"},
    };
    // clang-format on
    for (const auto& c : kCases) {
        SCOPED_TRACE(ToUtf8(c.settings));
        std::filesystem::remove(std::filesystem::path(folder_.Path("out.txt")));
        if (c.before) folder_.Write("out.txt", c.before);
        EXPECT_TRUE(Open(c.settings, "out.txt") && Write(c.set)) << ToUtf8(error_);
        EXPECT_EQ(folder_.Read("out.txt"), c.after);
    }
    EXPECT_EQ(target_->WrittenSize(), 6u) << "bytes, the mark left out";
}

TEST_F(Target, SaysWhatFailed) {
    const std::string open = "Could not open file for writing: ";
    const std::string broken = "TextFile: Broken row structure [Values: ";
    // clang-format off
    const struct { const char* name; const char16_t* set; std::string error; } kCases[] = {
        {"missing/out.txt", u"a/1", open},
        {"big-endian.txt", u"a/1", "Encoding is not supported yet"},
        {"out.txt", u"a|b/1", broken + "1, Structure: 2 for 'base']"},
        {"out.txt", u"a|b/1|2|3", broken + "3, Structure: 2 for 'base']"},
        {"/dev/full", u"a/1", ""},
    };
    // clang-format on
    folder_.Write("big-endian.txt", "\xFE\xFF");
    for (const auto& c : kCases) {
        if (*c.name == '/' && std::filesystem::path::preferred_separator != '/')
            GTEST_SKIP() << "this system has no device that is always full";
        error_.clear();
        EXPECT_FALSE(Open(u"", c.name) && Write(c.set)) << c.name;
        EXPECT_EQ(ToUtf8(error_).substr(0, c.error.size() + (c.error != open)), c.error);
    }
}

}  // namespace
