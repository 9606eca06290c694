#include "consumers/text_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <utility>

#include "support/one_step.h"

namespace {

using DataConsumers::TextFile;
using testing_support::Settings;
using namespace std::string_literals;

constexpr StringView kNull = u"<null>";

// Texts that stand between "|".
std::vector<String> Split(StringView texts) {
    std::vector<String> all(1);
    for (const char16_t unit : texts) {
        if (unit == u'|')
            all.emplace_back();
        else
            all.back() += unit;
    }
    return all;
}

RowSet Columns(StringView names) {
    RowSet rows;
    for (const String& name : Split(names)) {
        rows.Columns.emplace_back(name, 12, u"varchar", 0);
        rows.Columns.back().MaxWidth = name.size();
    }
    return rows;
}

void SetRow(RowSet& rows, StringView values) {
    rows.Row.clear();
    for (const String& value : Split(values)) {
        const bool null = value == kNull;
        rows.Row.push_back({null, true, null ? String() : value});
    }
}

class TextFileTarget : public testing::Test {
protected:
    SectionSettings Target(Settings settings, std::string_view name = "out.txt") {
        if (!name.empty()) settings.push_back({u"Name", folder_.Path(name)});
        return step_.With(Section::Target, settings);
    }
    void WriteRow(TextFile& target, RowSet& rows, StringView values) {
        String error;
        SetRow(rows, values);
        EXPECT_TRUE(target.Write(error, rows)) << ToUtf8(error);
    }
    // Writes one result set to out.txt and gives the file.
    std::string Write(const Settings& settings, StringView columns,
                      const std::vector<const char16_t*>& values) {
        TextFile target;
        RowSet rows = Columns(columns);
        String error;
        EXPECT_TRUE(target.Open(error, Target(settings))) << ToUtf8(error);
        EXPECT_TRUE(target.Prepare(error, rows)) << ToUtf8(error);
        for (const char16_t* row : values) WriteRow(target, rows, row);
        EXPECT_TRUE(target.Close(error)) << ToUtf8(error);
        written_ = target.WrittenSize();
        return folder_.Read("out.txt");
    }

    testing_support::ScratchFolder folder_;
    testing_support::OneStep step_;
    std::uint64_t written_ = 0;
};

struct Case {
    const char* name;
    Settings settings;
    const char16_t* columns;
    const char16_t* row;
    std::string bytes;
};

const Case kCases[] = {
    {"as it comes", {}, u"a|b", u"1|two", "1\ttwo\r\n"},
    {"one empty value", {}, u"a", u"", "\r\n"},
    {"line ends inside a value stay", {}, u"a|b", u"1\r\n2|3", "1\r\n2\t3\r\n"},

    {"header", {{u"Header", u"1"}}, u"a|b", u"1|2", "a\tb\r\n1\t2\r\n"},
    {"header word", {{u"Header", u"yes"}}, u"a|b", u"1|2", "1\t2\r\n"},
    {"header like a field",
     {{u"Header", u"true"}, {u"Delimiter", u";"}, {u"QuotationMode", u"ByValue"}},
     u"a;b|c",
     u"1|2",
     "\"a;b\";c\r\n1;2\r\n"},

    {"LF", {{u"EndOfLine", u"LF"}}, u"a|b", u"1|2", "1\t2\n"},
    {"lf is another word", {{u"EndOfLine", u"lf"}}, u"a|b", u"1|2", "1\t2\r\n"},
    {"no line end word", {{u"EndOfLine", u""}}, u"a|b", u"1|2", "1\t2\r\n"},

    {"word <tab>", {{u"Delimiter", u"<tab>"}}, u"a|b", u"1|2", "1\t2\r\n"},
    {"word tab", {{u"Delimiter", u"tab"}}, u"a|b", u"1|2", "1\t2\r\n"},
    {"upper case is a text", {{u"Delimiter", u"TAB"}}, u"a|b|c", u"1|2|3", "1TAB2TAB3\r\n"},
    {"delimiter that needs its quotes", {{u"Delimiter", u"\" ; \""}}, u"a|b", u"1|2", "1 ; 2\r\n"},
    {"no delimiter", {{u"Delimiter", u""}}, u"a|b", u"1|2", "12\r\n"},

    {"no quotes", {{u"Delimiter", u";"}}, u"a|b", u"1;2|3", "1;2;3\r\n"},
    {"quotes by value",
     {{u"Delimiter", u";"}, {u"QuotationMode", u"byvalue"}},
     u"a|b|c|d",
     u"1;2|x\"y||1\r\n2",
     "\"1;2\";x\"y;;1\r\n2\r\n"},
    {"the whole delimiter counts",
     {{u"Delimiter", u"::"}, {u"QuotationMode", u"ByValue"}},
     u"a|b",
     u"1:2|3::4",
     "1:2::\"3::4\"\r\n"},
    {"quotes always", {{u"QuotationMode", u"always"}}, u"a|b", u"1\"2|", "\"1\"2\"\t\"\"\r\n"},
    {"quotes always around NULL",
     {{u"QuotationMode", u"ALWAYS"}, {u"QuoteChar", u"'"}},
     u"a|b",
     u"<null>|x",
     "'NULL'\t'x'\r\n"},
    {"long quote",
     {{u"QuotationMode", u"Always"}, {u"QuoteChar", u"<q>"}},
     u"a",
     u"x",
     "<q>x<q>\r\n"},
    {"other word quotes nothing", {{u"QuotationMode", u"All"}}, u"a|b", u"1\t2|3", "1\t2\t3\r\n"},

    {"NULL", {}, u"a|b|c", u"<null>||x", "NULL\t\tx\r\n"},
    {"NULL as nothing", {{u"NullIsEmptyString", u"1"}}, u"a|b|c", u"<null>||x", "\t\tx\r\n"},

    {"a byte a character", {}, u"a|b", u"é|€", "\xE9\t\xAC\r\n"},
    {"UTF-8",
     {{u"Encoding", u"UTF8"}},
     u"a|b",
     u"é€|😀",
     "\xEF\xBB\xBF\xC3\xA9\xE2\x82\xAC\t\xF0\x9F\x98\x80\r\n"},
    {"lower case is no encoding", {{u"Encoding", u"utf8"}}, u"a", u"é", "\xE9\r\n"},
    {"UTF-16", {{u"Encoding", u"UTF16"}}, u"a", u"€", "\xFF\xFE\xAC\x20\r\0\n\0"s},
    {"Unicode", {{u"Encoding", u"Unicode"}}, u"a", u"😀", "\xFF\xFE\x3D\xD8\x00\xDE\r\0\n\0"s},

    {"fixed width",
     {{u"FixedWidth", u"1"}, {u"Delimiter", u";"}, {u"QuotationMode", u"Always"}},
     u"long|wide|x",
     u"ab|<null>|longer",
     "ab  NULLlonger\r\n"},
    {"fixed width with nothing for NULL",
     {{u"FixedWidth", u"1"}, {u"NullIsEmptyString", u"1"}, {u"Header", u"1"}},
     u"one|x",
     u"<null>|y",
     "onex\r\n   y\r\n"},
};

TEST_F(TextFileTarget, WritesRowByItsSettings) {
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        Settings settings = c.settings;
        settings.push_back({u"Overwrite", u"1"});
        EXPECT_EQ(Write(settings, c.columns, {c.row}), c.bytes);
        const std::size_t mark = c.bytes.starts_with("\xEF\xBB\xBF") ? 3
                                 : c.bytes.starts_with("\xFF\xFE")   ? 2
                                                                     : 0;
        EXPECT_EQ(written_, c.bytes.size() - mark);
    }
}

TEST_F(TextFileTarget, AppendsInTheEncodingOfTheFile) {
    const struct {
        const char* name;
        std::string before;
        const char16_t* encoding;
        const char16_t* header;
        std::string after;
    } kAppends[] = {
        {"no second header", "a\r\n", u"", u"1", "a\r\n\xE9\r\n"},
        {"a file without a mark stays so", "a\r\n", u"UTF8", u"0", "a\r\n\xE9\r\n"},
        {"empty file", "", u"UTF8", u"1", "\xE9\r\n"},
        {"UTF-8 goes on",
         "\xEF\xBB\xBF"
         "a\r\n",
         u"", u"0",
         "\xEF\xBB\xBF"
         "a\r\n\xC3\xA9\r\n"},
        {"UTF-16 goes on", "\xFF\xFE", u"UTF8", u"0", "\xFF\xFE\xE9\0\r\0\n\0"s},
    };
    for (const auto& c : kAppends) {
        SCOPED_TRACE(c.name);
        folder_.Write("out.txt", c.before);
        EXPECT_EQ(Write({{u"Encoding", c.encoding}, {u"Header", c.header}}, u"a", {u"é"}), c.after);
        EXPECT_EQ(written_, c.after.size() - c.before.size());
    }
}

TEST_F(TextFileTarget, WritesHeaderToNewFileAndOverOldOne) {
    const Settings header{{u"Header", u"1"}};
    EXPECT_EQ(Write(header, u"a|b", {u"1|2"}), "a\tb\r\n1\t2\r\n");
    EXPECT_EQ(Write(header, u"a|b", {u"3|4"}), "a\tb\r\n1\t2\r\n3\t4\r\n");
    EXPECT_EQ(Write({{u"Header", u"1"}, {u"Overwrite", u"1"}}, u"a|b", {}), "a\tb\r\n");
}

TEST_F(TextFileTarget, LeavesRemovedColumnsOut) {
    for (const char16_t* fixed : {u"0", u"1"}) {
        TextFile target;
        RowSet rows = Columns(u"a|b|c|d");
        rows.Exclude(0);
        rows.Exclude(2);
        String error;
        ASSERT_TRUE(target.Open(error, Target({{u"Header", u"1"},
                                               {u"Overwrite", u"1"},
                                               {u"FixedWidth", fixed},
                                               {u"QuotationMode", u"Always"}})));
        ASSERT_TRUE(target.Prepare(error, rows));
        SetRow(rows, u"1|2|3|4");
        rows.Exclude(0);
        rows.Exclude(2);
        ASSERT_TRUE(target.Write(error, rows));
        ASSERT_TRUE(target.Close(error));
        EXPECT_EQ(folder_.Read("out.txt"),
                  fixed[0] == u'1' ? "bd\r\n24\r\n" : "\"b\"\t\"d\"\r\n\"2\"\t\"4\"\r\n");
    }
}

// The widths are known only once the rows were measured, which is after Prepare.
TEST_F(TextFileTarget, LinesTheHeaderUpWithTheRows) {
    const Settings settings{{u"FixedWidth", u"1"}, {u"Header", u"1"}, {u"Overwrite", u"1"}};
    String error;
    for (const bool with_rows : {true, false}) {
        SCOPED_TRACE(with_rows);
        TextFile target;
        RowSet rows = Columns(u"a|b");
        ASSERT_TRUE(target.Open(error, Target(settings)));
        ASSERT_TRUE(target.Prepare(error, rows));
        if (with_rows) {
            rows.Columns[0].MaxWidth = 4;
            WriteRow(target, rows, u"1|2");
            WriteRow(target, rows, u"3333|4");
        }
        ASSERT_TRUE(target.NextResultSet(error, Target(settings)));
        RowSet next = Columns(u"next");
        ASSERT_TRUE(target.Prepare(error, next));
        ASSERT_TRUE(target.Close(error));
        EXPECT_EQ(folder_.Read("out.txt"),
                  with_rows ? "a   b\r\n1   2\r\n33334\r\nnext\r\n" : "ab\r\nnext\r\n");
    }
}

TEST_F(TextFileTarget, ContinuesFileWithNextResultSet) {
    folder_.Write("out.txt", "old\r\n");
    const SectionSettings settings = Target({{u"Header", u"1"}});
    TextFile target;
    RowSet first = Columns(u"a");
    RowSet second = Columns(u"b|c");
    String error;
    ASSERT_TRUE(target.Open(error, settings));
    ASSERT_TRUE(target.Prepare(error, first));
    WriteRow(target, first, u"1");
    ASSERT_TRUE(target.NextResultSet(error, settings));
    ASSERT_TRUE(target.Prepare(error, second));
    WriteRow(target, second, u"2|3");
    ASSERT_TRUE(target.Close(error));
    EXPECT_EQ(folder_.Read("out.txt"), "old\r\n1\r\nb\tc\r\n2\t3\r\n");
    EXPECT_EQ(target.WrittenSize(), 13u);
    ASSERT_TRUE(target.Open(error, settings));
    EXPECT_EQ(target.WrittenSize(), 0u);
    ASSERT_TRUE(target.Close(error));
}

TEST_F(TextFileTarget, OpensOneFilePerResultSet) {
    const struct {
        const char* name;
        const char16_t* overwrite;
        const char* second_name;
        const char* first;
        const char* second;
    } kFiles[] = {
        {"two files", u"1", "second.txt", "a\r\n1\r\n", "b\r\n2\r\n"},
        {"the same file, extended", u"0", "first.txt", "a\r\n1\r\nb\r\n2\r\n", nullptr},
        {"the same file, replaced", u"1", "first.txt", "b\r\n2\r\n", nullptr},
    };
    for (const auto& c : kFiles) {
        SCOPED_TRACE(c.name);
        folder_.Write("first.txt", "");
        std::filesystem::remove(std::filesystem::path(folder_.Path("first.txt")));
        const Settings settings{
            {u"Header", u"1"}, {u"OneFilePerResultSet", u"1"}, {u"Overwrite", c.overwrite}};
        TextFile target;
        RowSet first = Columns(u"a");
        RowSet second = Columns(u"b");
        String error;
        ASSERT_TRUE(target.Open(error, Target(settings, "first.txt")));
        ASSERT_TRUE(target.Prepare(error, first));
        WriteRow(target, first, u"1");
        ASSERT_TRUE(target.NextResultSet(error, Target(settings, c.second_name)));
        ASSERT_TRUE(target.Prepare(error, second));
        WriteRow(target, second, u"2");
        ASSERT_TRUE(target.Close(error));
        EXPECT_EQ(folder_.Read("first.txt"), c.first);
        if (c.second) {
            EXPECT_EQ(folder_.Read(c.second_name), c.second);
        }
    }
}

TEST_F(TextFileTarget, ReadsItsNameAgainWithMacros) {
    SectionSettings settings = Target({{u"OneFilePerResultSet", u"1"}}, "$USER_PART$_$TABLE$.txt");
    step_.Job().ParseCommandLine({u"$USER_PART$=of"});
    TextFile target;
    RowSet rows = Columns(u"a");
    String error;
    const SectionSettings source(step_.Job(), Section::Source);
    source.Set(u"$TABLE$", u"one");
    ASSERT_TRUE(target.Open(error, settings));
    WriteRow(target, rows, u"1");
    source.Set(u"$TABLE$", u"two");
    ASSERT_TRUE(target.NextResultSet(error, settings));
    WriteRow(target, rows, u"2");
    ASSERT_TRUE(target.Close(error));
    EXPECT_EQ(folder_.Read("of_one.txt"), "1\r\n");
    EXPECT_EQ(folder_.Read("of_two.txt"), "2\r\n");
}

TEST_F(TextFileTarget, RefusesBrokenRow) {
    TextFile target;
    RowSet rows = Columns(u"a|b");
    rows.TableName = u"items";
    String error;
    ASSERT_TRUE(target.Open(error, Target({})));
    for (const auto& [values, count] : {std::pair{u"1", u'1'}, {u"1|2|3", u'3'}}) {
        SetRow(rows, values);
        EXPECT_FALSE(target.Write(error, rows));
        EXPECT_EQ(error, u"TextFile: Broken row structure [Values: " + String(1, count) +
                             u", Structure: 2 for 'items']");
    }
    WriteRow(target, rows, u"1|2");
    ASSERT_TRUE(target.Close(error));
    EXPECT_EQ(folder_.Read("out.txt"), "1\t2\r\n");
}

TEST_F(TextFileTarget, SaysWhyFileCouldNotBeOpened) {
    folder_.MakeFolder("folder");
    for (const char* name : {"missing/out.txt", "folder"}) {
        SCOPED_TRACE(name);
        TextFile target;
        String error;
        EXPECT_FALSE(target.Open(error, Target({}, name)));
        EXPECT_TRUE(ToUtf8(error).starts_with("Could not open file for writing: "))
            << ToUtf8(error);
        EXPECT_GT(error.size(), sizeof("Could not open file for writing: ") - 1);
    }
    TextFile target;
    String error;
    EXPECT_FALSE(target.Open(error, Target({}, "")));

    // The next result set finds no file to go to.
    RowSet rows = Columns(u"a");
    const Settings settings{{u"OneFilePerResultSet", u"1"}};
    ASSERT_TRUE(target.Open(error, Target(settings)));
    WriteRow(target, rows, u"1");
    EXPECT_FALSE(target.NextResultSet(error, Target(settings, "missing/out.txt")));
    EXPECT_TRUE(ToUtf8(error).starts_with("Could not open file for writing: "));
    EXPECT_FALSE(target.Write(error, rows));
    EXPECT_EQ(error, u"File is not opened yet.");
    EXPECT_EQ(folder_.Read("out.txt"), "1\r\n");
}

TEST_F(TextFileTarget, CannotWriteInEveryEncodingThatItRecognises) {
    folder_.Write("out.txt", "\xFE\xFF");
    TextFile target;
    RowSet rows = Columns(u"a");
    String error;
    ASSERT_TRUE(target.Open(error, Target({})));
    SetRow(rows, u"1");
    EXPECT_FALSE(target.Write(error, rows));
    EXPECT_EQ(error, u"Encoding is not supported yet");
    EXPECT_EQ(target.WrittenSize(), 0u);
}

TEST_F(TextFileTarget, FailsOnFullDisk) {
    if (std::filesystem::path::preferred_separator != '/')
        GTEST_SKIP() << "this system has no device that is always full";
    for (const char16_t* overwrite : {u"0", u"1"}) {
        TextFile target;
        RowSet rows = Columns(u"a");
        String error;
        ASSERT_TRUE(
            target.Open(error, Target({{u"Name", u"/dev/full"}, {u"Overwrite", overwrite}}, "")))
            << ToUtf8(error);
        SetRow(rows, u"1");
        EXPECT_FALSE(target.Write(error, rows));
        EXPECT_EQ(error, u"");
        EXPECT_EQ(target.WrittenSize(), 0u);
    }
}

}  // namespace
