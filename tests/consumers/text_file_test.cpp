#include "consumers/data_consumer.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/collecting_logger.h"
#include "support/one_step.h"

namespace {

using namespace std::string_literals;

std::vector<String> Split(StringView texts, char16_t separator) {
    std::vector<String> all(1);
    for (const char16_t unit : texts)
        unit == separator ? void(all.emplace_back()) : all.back().push_back(unit);
    return all;
}

class Target : public testing::Test {
protected:
    // Makes the target of the fourth step and opens it. Settings have "|" between them.
    bool Open(StringView settings, std::string_view name, StringView type = u"TextFile") {
        testing_support::Settings all{{u"Type", String(type)}, {u"Name", folder_.Path(name)}};
        for (const String& one : Split(settings, u'|'))
            all.emplace_back(one.substr(0, one.find(u'=')), one.substr(one.find(u'=') + 1));
        const SectionSettings section = step_.With(Section::Target, all);
        return DataConsumers::DataConsumer::Create(error_, section, target_, logger_, 3) &&
               (!target_ || target_->Open(error_, section));
    }
    // Writes a result set. The names of the columns and the rows have "/" between them, the values
    // "|". "~" is NULL, "-" what was removed.
    bool Write(StringView set) {
        RowSet rows;
        std::vector<String> lines = Split(set, u'/');
        for (const String& name : Split(lines[0], u'|')) {
            rows.Columns.emplace_back(name, 12, u"varchar", 0);
            rows.Columns.back().MaxWidth = name.size();
            rows.Columns.back().Included = name != u"-";
        }
        bool written = target_->Prepare(error_, rows);
        for (std::size_t i = 1; i < lines.size(); ++i) {
            rows.Row.clear();
            for (const String& value : Split(lines[i], u'|'))
                rows.Row.push_back({value == u"~", value != u"-", value});
            written = written && target_->Write(error_, rows);
        }
        return target_->Close(error_) && written;
    }

    testing_support::ScratchFolder folder_;
    testing_support::OneStep step_;
    testing_support::CollectingLogger logger_;
    std::unique_ptr<DataConsumers::DataConsumer> target_;
    String error_;
};

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
        {"out.txt", u"a|b/1", broken + "1, Structure: 2 for '']"},
        {"out.txt", u"a|b/1|2|3", broken + "3, Structure: 2 for '']"},
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
