#include "providers/text_file.h"

#include <gtest/gtest.h>

#include "support/one_step.h"

namespace {

using DataProviders::TextFile;
using testing_support::ColumnNames;
using testing_support::FetchAll;
using testing_support::Settings;
using Texts = std::vector<std::string>;
using namespace std::string_literals;

class TextFileSource : public testing::Test {
protected:
    SectionSettings Source(const Settings& settings) {
        return step_.With(Section::Source, settings);
    }
    // Opens the source on a file of these bytes and reads all of its rows.
    Texts Read(std::string_view bytes, Settings settings, RowSet& rows) {
        folder_.Write("in.txt", bytes);
        settings.push_back({u"Name", folder_.Path("in.txt")});
        TextFile source;
        String error;
        EXPECT_TRUE(source.Open(error, Source(settings), rows)) << ToUtf8(error);
        Texts all = FetchAll(source, rows, true);
        EXPECT_TRUE(source.Close());
        return all;
    }

    testing_support::ScratchFolder folder_;
    testing_support::OneStep step_;
};

struct Case {
    const char* name;
    Settings settings;
    std::string bytes;
    std::string columns;
    Texts rows;
};

// Columns and values stand between "|".
const Case kCases[] = {
    // Lines
    {"tab and header", {}, "a\tb\n1\t2\n3\t4\n", "a|b", {"1|2", "3|4"}},
    {"CR LF", {}, "a\tb\r\n1\t2\r\n", "a|b", {"1|2"}},
    {"last line without LF", {}, "a\tb\n1\t2\n3\t4", "a|b", {"1|2", "3|4"}},
    {"CR at the very end stays", {}, "a\tb\r\n1\t2\r", "a|b", {"1|2\r"}},
    {"header only", {}, "a\tb", "a|b", {}},
    {"empty lines go when there are two columns", {}, "a\tb\n\n1\t2\n\n", "a|b", {"1|2"}},
    {"empty lines stay in one column", {}, "a\n\nx\n", "a", {"", "x"}},
    {"empty header line is a nameless column", {}, "\nx\n", "", {"x"}},

    // Delimiters
    {"word tab", {{u"Delimiter", u"tab"}}, "a\tb\n1\t2\n", "a|b", {"1|2"}},
    {"word <tab>", {{u"Delimiter", u"<tab>"}}, "a\tb\n1\t2\n", "a|b", {"1|2"}},
    {"no delimiter is tab", {{u"Delimiter", u""}}, "a\tb\n1\t2\n", "a|b", {"1|2"}},
    {"upper case is a letter", {{u"Delimiter", u"TAB"}}, "aTb\n1T2\n", "a|b", {"1|2"}},
    {"first character counts", {{u"Delimiter", u";,"}}, "a;b\n1;2,3\n", "a|b", {"1|2,3"}},
    {"trailing delimiter", {{u"Delimiter", u";"}}, "a;b;\n1;2;\n", "a|b|", {"1|2|"}},

    // Quotes
    {"quoted delimiter", {{u"Delimiter", u";"}}, "a;b\n\"a;b\";c\n", "a|b", {"a;b|c"}},
    {"header keeps its quotes", {{u"Delimiter", u";"}}, "\"x;z\";y\n1;2\n", "\"x;z\"|y", {"1|2"}},
    {"doubled quotes stay", {{u"Delimiter", u";"}}, "a;b\n\"1\"\"2\";3\n", "a|b", {"1\"\"2|3"}},
    {"quote at one end stays", {{u"Delimiter", u";"}}, "a;b\nx\"y;z\";2\n", "a|b", {"x\"y;z\"|2"}},
    {"open quote takes the rest",
     {{u"Delimiter", u";"}, {u"SkipIncompleteLines", u"0"}},
     "a;b\n1;2\n\"x;y\n",
     "a|b",
     {"1|2", "\"x;y|2"}},
    {"lone quote stays",
     {{u"Delimiter", u";"}, {u"SkipIncompleteLines", u"0"}},
     "a\n\"\n",
     "a",
     {"\""}},
    {"empty quotes", {{u"Delimiter", u";"}}, "a;b\n\"\";\"\"\n", "a|b", {"|"}},
    {"other quote",
     {{u"Delimiter", u";"}, {u"Quote", u"'!"}},
     "a;b\n'1;2';\"3\"\n",
     "a|b",
     {"1;2|\"3\""}},
    {"no quote", {{u"Delimiter", u";"}, {u"Quote", u""}}, "a;b\n\"1;2\";3\n", "a|b", {"\"1|2\"|3"}},

    // Short and long lines
    {"short lines go", {{u"Delimiter", u";"}}, "a;b\n1\n2;3\n", "a|b", {"2|3"}},
    {"short lines repeat what was there",
     {{u"Delimiter", u";"}, {u"SkipIncompleteLines", u"false"}},
     "a;b;c\n1;2;3\n4\n\n5;6\n",
     "a|b|c",
     {"1|2|3", "4|2|3", "|2|3", "5|6|3"}},
    {"a short first line settles the width",
     {{u"Delimiter", u";"}, {u"SkipIncompleteLines", u"false"}},
     "a;b\n1\n2;3\n",
     "a|b",
     {"1", "2"}},
    {"a long first line settles the width",
     {{u"Delimiter", u";"}},
     "a;b\n1;2;3\n4;5\n6;7;8;9\n",
     "a|b",
     {"1|2|3", "4|5|3", "6|7|8"}},

    // Comments
    {"comment lines go",
     {{u"CommentChar", u"#!"}},
     "a\n#no\n #yes\n!yes\nx#yes\n#no",
     "a",
     {" #yes", "!yes", "x#yes"}},
    {"the header is taken as it comes", {{u"CommentChar", u"#"}}, "#a\nx\n", "#a", {"x"}},
    {"none set, a zero begins no comment", {}, "a\tb\n\0\t1\n2\t3\n"s, "a|b", {"\0|1"s, "2|3"}},

    // Without a header
    {"columns of the first line",
     {{u"Header", u"0"}, {u"Delimiter", u";"}},
     "1;2\n3;4\n",
     "Column1|Column2",
     {"1|2", "3|4"}},
    {"columns of the first line that is no comment",
     {{u"Header", u"false"}, {u"Delimiter", u";"}, {u"CommentChar", u"#"}},
     "#1;2;3\n#\n\"4;5\";6\n7\n8;9;10\n",
     "Column1|Column2",
     {"4;5|6", "8|9"}},
    {"nothing but comments", {{u"Header", u"0"}, {u"CommentChar", u"#"}}, "#1\n#2\n", "", {}},
    {"empty file", {{u"Header", u"0"}}, "", "", {}},

    // Types
    {"empty numbers are NULL",
     {{u"Delimiter", u";"}, {u"DataTypes", u"integer,,float,short,number,Integer,other"}},
     "a;b;c;d;e;f;g;h\n;;;;;;;\n1;;x;;5;;\"\";\n\"\";\"\";;;;;;\n",
     "a|b|c|d|e|f|g|h",
     {"<null>||<null>|<null>|<null>|||", "1||x|<null>|5|||", "<null>||<null>|<null>|<null>|||"}},
    {"types without a header",
     {{u"Header", u"0"}, {u"Delimiter", u";"}, {u"DataTypes", u"varchar,integer"}},
     ";\n",
     "Column1|Column2",
     {"|<null>"}},

    // Encodings
    {"a character a byte", {}, "\xE1\n\xE9\x80\n", "á", {"é\xC2\x80"}},
    {"UTF-8 mark goes, the text comes byte by byte",
     {},
     "\xEF\xBB\xBF"
     "a\nž\n",
     "a",
     {"\xC3\x85\xC2\xBE"}},
    {"UTF-16 little-endian keeps its mark",
     {{u"Delimiter", u";"}},
     "\xFF\xFE"
     "a\0;\0\x7E\x01\n\0\x3D\xD8\x00\xDE;\0x\0\r\0\n\0"s,
     "\xEF\xBB\xBF"
     "a|ž",
     {"😀|x"}},
    {"UTF-16 little-endian without a header",
     {{u"Header", u"0"}},
     "\xFF\xFE"
     "a\0\n\0"s,
     "Column1",
     {"\xEF\xBB\xBF"
      "a"}},
    {"UTF-16 big-endian comes byte by byte", {}, "\xFE\xFF\0a\0\n\0x"s, "þÿ\0a\0"s, {"\0x"s}},
};

TEST_F(TextFileSource, ReadsLines) {
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        RowSet rows;
        EXPECT_EQ(Read(c.bytes, c.settings, rows), c.rows);
        EXPECT_EQ(ColumnNames(rows), c.columns);
        for (const ColumnDefinition& column : rows.Columns) EXPECT_EQ(column.MaxWidth, 0u);
    }
}

TEST_F(TextFileSource, DescribesColumnsByTypeWords) {
    RowSet rows;
    Read("a;b;c;d;e;f;g\n",
         {{u"Delimiter", u";"}, {u"DataTypes", u"integer,short,number,float,,INTEGER"}}, rows);
    const struct {
        const char16_t* type_name;
        std::int32_t type;
        const char16_t* mark;
    } kColumns[] = {
        {u"integer", 4, u""},   {u"integer", 4, u""},   {u"number", 6, u""},    {u"number", 6, u""},
        {u"varchar", -9, u"'"}, {u"varchar", -9, u"'"}, {u"varchar", -9, u"'"},
    };
    ASSERT_EQ(rows.Columns.size(), std::size(kColumns));
    for (std::size_t i = 0; i < std::size(kColumns); ++i) {
        SCOPED_TRACE(i);
        const ColumnDefinition& column = rows.Columns[i];
        EXPECT_EQ(column.TypeName, kColumns[i].type_name);
        EXPECT_EQ(column.DataType, kColumns[i].type);
        EXPECT_EQ(column.LiteralPrefix, kColumns[i].mark);
        EXPECT_EQ(column.LiteralSuffix, kColumns[i].mark);
        EXPECT_EQ(column.Length, 0);
        EXPECT_TRUE(column.Nullable && column.Included && !column.AutoUnique);
    }
}

TEST_F(TextFileSource, SaysWhyItCouldNotOpen) {
    folder_.MakeFolder("folder");
    folder_.Write("empty.txt", "");
    const std::string missing = ToUtf8(folder_.Path("missing.txt"));
    const struct {
        const char* name;
        Settings settings;
        std::string error;
        bool more;  // the system's words follow
    } kCasesOfFailure[] = {
        {"no name", {}, "'Name' parameter not specified.", false},
        {"empty name", {{u"Name", u""}}, "'Name' parameter not specified.", false},
        {"no such file",
         {{u"Name", folder_.Path("missing.txt")}},
         "File '" + missing + "' does not exist or inaccessible.",
         false},
        {"folder", {{u"Name", folder_.Path("folder")}}, "Could not open file for reading: ", true},
        {"no header line", {{u"Name", folder_.Path("empty.txt")}}, "", false},
    };
    for (const auto& c : kCasesOfFailure) {
        SCOPED_TRACE(c.name);
        TextFile source;
        RowSet rows;
        String error;
        EXPECT_FALSE(source.Open(error, Source(c.settings), rows));
        EXPECT_EQ(ToUtf8(error).substr(0, c.error.size()), c.error);
        EXPECT_EQ(ToUtf8(error).size() > c.error.size(), c.more) << ToUtf8(error);
    }
}

TEST_F(TextFileSource, LooksForTheFileBeforeItReplacesMacros) {
    step_.Job().ParseCommandLine({u"$WHICH$=real"});
    folder_.Write("real.txt", "a\nreal\n");
    const SectionSettings settings = Source({{u"Name", folder_.Path("$WHICH$.txt")}});
    TextFile source;
    RowSet rows;
    String error;
    EXPECT_FALSE(source.Open(error, settings, rows));
    EXPECT_EQ(error,
              u"File '" + folder_.Path("$WHICH$.txt") + u"' does not exist or inaccessible.");
    folder_.Write("$WHICH$.txt", "a\nliteral\n");
    ASSERT_TRUE(source.Open(error, settings, rows));
    EXPECT_EQ(FetchAll(source, rows), Texts{"real"});
}

TEST_F(TextFileSource, OpensAgainWithTheColumnsOfTheFirstTime) {
    folder_.Write("in.txt", "#0;0\n1;2\n3;4\n");
    for (const char16_t* header : {u"1", u"0"}) {
        SCOPED_TRACE(ToUtf8(header));
        TextFile source;
        RowSet rows;
        String error;
        const SectionSettings settings = Source({{u"Name", folder_.Path("in.txt")},
                                                 {u"Header", header},
                                                 {u"Delimiter", u";"},
                                                 {u"CommentChar", u"#"}});
        ASSERT_TRUE(source.Open(error, settings, rows));
        EXPECT_TRUE(source.CanReopen());
        EXPECT_EQ(FetchAll(source, rows, true), (Texts{"1|2", "3|4"}));
        EXPECT_FALSE(source.HasMoreData(error, rows));
        ASSERT_TRUE(source.Close());
        rows.Columns[0].Name = u"kept";
        rows.Columns[0].MaxWidth = 9;
        ASSERT_TRUE(source.Open(error, settings, rows));
        EXPECT_EQ(rows.Columns.size(), 2u);
        EXPECT_EQ(rows.Columns[0].Name, u"kept");
        EXPECT_EQ(rows.Columns[0].MaxWidth, 9u);
        EXPECT_EQ(FetchAll(source, rows), (Texts{"1|2", "3|4"}));
        EXPECT_EQ(error, u"");
    }
}

}  // namespace
