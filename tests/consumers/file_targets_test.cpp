#include "consumers/file_target.h"

#include <filesystem>

#include "support/target_fixture.h"

namespace {

class FileTarget : public testing_support::TargetFixture {
protected:
    // What a whole run leaves in the file of its first result set. No other file is there before.
    std::string Run(StringView type, const String& settings, StringView sets) {
        target_.reset();
        for (const char* name : {"t1.out", "t2.out", "t3.out"})
            std::filesystem::remove(std::filesystem::path(folder_.Path(name)));
        EXPECT_TRUE(Open(settings, "$TABLE$.out", type) && Write(sets)) << ToUtf8(error_);
        return folder_.Read("t1.out");
    }
};

const std::string kMark = "\xEF\xBB\xBF";
const std::string kDeclaration = "<?xml version='1.0' encoding='UTF-8'?>\r\n";

TEST_F(FileTarget, PutsSeveralResultSetsIntoOneFile) {
    // clang-format off
    const struct { const char16_t* type; const char16_t* settings; const char16_t* sets; std::string file; } kCases[] = {
        {u"TextFile", u"Header=1", u"a|b/1|x#c#d/y", "a\tb\r\n1\tx\r\nc\r\nd\r\ny\r\n"},
        {u"SQLScript", u"Table=$TABLE$|ColumnList=1|BatchSize=2|Delimiter=;", u"a|b/1|x/2|y/3|z#c/4#d#e/5/6",
         "insert into \"t1\"(\"a\",\"b\") values ('1','x'),\r\n   ('2','y');\r\n"
         "insert into \"t1\"(\"a\",\"b\") values ('3','z');\r\ninsert into \"t2\"(\"c\") values ('4');\r\n"
         "insert into \"t4\"(\"e\") values ('5'),\r\n   ('6');\r\n"},
        {u"SQLScript", u"Table=x.$TABLE$", u"a/1#c|d/2|3", "insert into x.t1 values ('1')\r\ninsert into x.t2 values ('2','3')\r\n"},
        {u"DDLScript", u"Table=x.$TABLE$|Delimiter=;", u"t|c|y/t|id|int/t|n|text#t|c|y#t|c|y/t|id|int",
         "create table \"x\".\"t1\" (\r\n id int null,\r\n n text null);\r\ncreate table \"x\".\"t3\" (\r\n id int null);\r\n"},
        {u"DDLScript", u"Table=$TABLE$", u"t|c|y/t|id|int", "create table \"base\" (\r\n id int null)\r\n"},  // the rows' own
        {u"XMLFile", u"set=s|row=r|FieldIsTag=1", u"a/1#b|c/2|3",
         kMark + kDeclaration + "<s>\r\n<r>\r\n <a>1</a>\r\n</r>\r\n<r>\r\n <b>2</b>\r\n <c>3</c>\r\n</r>\r\n</s>\r\n"},
        {u"JSONFile", u"", u"a/1#b|c/2|3", "[ {\"a\":1 },\r\n {\"b\":2,\"c\":3 }]"},
        {u"HtmlFile", u"Prologue=(|Epilogue=)", u"a/1#b|c/2|3#d", "(<table class=\"table\">\r\n<tr>\r\n<th>\r\na</th></tr>\r\n"
         "<tr>\r\n<td>\r\n1</td></tr>\r\n</table>\r\n<table class=\"table\">\r\n<tr>\r\n<td>\r\n2</td><td>\r\n3</td></tr>\r\n"
         "</table>\r\n<table class=\"table\">\r\n</table>\r\n)"},
        // No second row of names; otherwise as if all were one result set.
        {u"ExcelFile", u"", u"a|b/1|x#c|d/2|y", Run(u"ExcelFile", u"", u"a|b/1|x/2|y")},
        {u"RTFFile", u"", u"a|b/1|x#c|d/2|y", Run(u"RTFFile", u"", u"a|b/1|x/2|y")},
    };
    // clang-format on
    for (const auto& c : kCases) {
        SCOPED_TRACE(ToUtf8(c.type));
        EXPECT_EQ(Run(c.type, c.settings, c.sets), c.file);
        EXPECT_FALSE(folder_.Exists("t2.out"));
    }
}

TEST_F(FileTarget, GivesEachResultSetItsFileAndCountsItsBytes) {
    // head: bytes at the start of a file that the written size leaves out. left_out: what is
    // missing at the end of each file but the last. tail: bytes at the end of that, not counted.
    // clang-format off
    const struct { const char16_t* type; String settings; std::size_t head; std::string left_out; std::size_t tail; } kCases[] = {
        {u"TextFile", u"Header=1|Encoding=UTF8", 3, "", 0},
        {u"SQLScript", u"Table=t|BatchSize=2|ColumnList=1|Encoding=UTF8", 3, "", 0},
        {u"DDLScript", u"Table=t|Encoding=Unicode|Delimiter=;", 2, "", 0},
        {u"XMLFile", u"set=s|row=r|item=i|name=n", 3 + kDeclaration.size(), "</s>\r\n", 0},
        {u"JSONFile", u"Encoding=UTF8", 4, "]", 1}, {u"HtmlFile", u"Encoding=ANSI", 0, "", 0},
        {u"ExcelFile", u"", 3, "", 0}, {u"RTFFile", u"", 3, "", 0},
    };
    // clang-format on
    const String sets[] = {u"a|b|c/1|\u00E9|int/2|y|z/3|p|q", u"d|e|f/4|~|r", u"g|h|i"};
    for (const auto& c : kCases) {
        SCOPED_TRACE(ToUtf8(c.type));
        const auto alone = [&](const String& set) { return Run(c.type, c.settings, set); };
        const std::string expected[] = {alone(sets[0]), alone(sets[1]), alone(sets[2])};
        Run(c.type, c.settings + u"|OneFilePerResultSet=1",
            sets[0] + u"#" + sets[1] + u"#" + sets[2]);
        std::size_t counted = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            const std::string file = folder_.Read("t" + std::to_string(i + 1) + ".out");
            EXPECT_EQ(file + (i < 2 ? c.left_out : ""), expected[i]);
            counted += file.size() - c.head;
        }
        EXPECT_EQ(target_->WrittenSize(), counted - c.tail);
        EXPECT_TRUE(target_->Open(error_, {step_.Job(), Section::Target}));
        EXPECT_EQ(target_->WrittenSize(), 0u);
    }
}

// The file that was left behind is released, so it can be opened again.
TEST_F(FileTarget, GoesOnInTheSameFileByItsOverwriteSetting) {
    const String own = u"OneFilePerResultSet=1|Name=" + folder_.Path("same.out");
    const auto same = [&](StringView type, const String& settings) {
        EXPECT_TRUE(Open(own + settings, "unused", type) && Write(u"a/1#b/2")) << ToUtf8(error_);
        return folder_.Read("same.out");
    };
    EXPECT_EQ(same(u"JSONFile", u""), "[ {\"a\":1 }[ {\"b\":2 }]");
    EXPECT_EQ(same(u"JSONFile", u"|Overwrite=1"), "[ {\"b\":2 }]");
    EXPECT_EQ(same(u"XMLFile", u"|Overwrite=1|set=s|FieldIsTag=1"),
              kMark + kDeclaration + "<s>\r\n<>\r\n <b>2</b>\r\n</>\r\n</s>\r\n");
    EXPECT_EQ(same(u"SQLScript", u"|Overwrite=1|Table=$TABLE$|BatchSize=9"),
              "insert into \"t2\" values ('2')\r\n");
}

TEST_F(FileTarget, SaysWhatFailed) {
    const std::string json = "JSONFile: Broken row structure [Values: ";
    const std::string statement = "Cound not build SQL statement";
    // clang-format off
    const struct { const char16_t* type; const char16_t* set; std::string error; } kCases[] = {
        {u"JSONFile", u"a|b/1", json + "1, Structure: 2 for 'base']"},
        {u"JSONFile", u"a|-/1|-|2", json + "3, Structure: 2 for 'base']"},
        {u"SQLScript", u"a|b/1|2/3", statement}, {u"SQLScript", u"a|-/1|-|2", statement},
        {u"DDLScript", u"a|b/t|id", statement},
    };
    // clang-format on
    for (const auto& c : kCases) {
        EXPECT_FALSE(Open(u"Table=t", "broken.out", c.type) && Write(c.set)) << ToUtf8(c.set);
        EXPECT_EQ(ToUtf8(error_), c.error);
    }
    for (const StringView type :
         {u"SQLScript", u"XMLFile", u"JSONFile", u"ExcelFile", u"HtmlFile", u"RTFFile"}) {
        SCOPED_TRACE(ToUtf8(type));
        ASSERT_TRUE(Open(u"Table=t|OneFilePerResultSet=1", "$TABLE$.out", type));
        const SectionSettings settings(step_.Job(), Section::Target);
        Describe(u"a");
        rows_.Row = testing_support::RowOf(u"1");
        settings.Set(u"Name", folder_.Path("missing/t2.out"));
        EXPECT_FALSE(target_->NextResultSet(error_, settings));
        EXPECT_TRUE(error_.starts_with(u"Could not open file for writing: ")) << ToUtf8(error_);
        EXPECT_FALSE(target_->Write(error_, rows_));
        EXPECT_EQ(ToUtf8(error_), type == u"JSONFile" ? "" : "File is not opened yet.");
    }
    EXPECT_FALSE(Open(u"", "never.sql", u"SQLScript") || folder_.Exists("never.sql"));
}

TEST_F(FileTarget, WritesRowsOfAnyLength) {
    const StringView longer = u"a|b/1|2|3", shorter = u"a|b/1", removed = u"a|b|c/1|-|-";
    // clang-format off
    const struct { StringView type; StringView set; std::string piece; int times; } kCases[] = {
        {u"HtmlFile", longer, "<td>", 3}, {u"HtmlFile", longer, "<th>", 2}, {u"HtmlFile", shorter, "<th>", 2},
        // The names of the columns that have a value in the first row.
        {u"ExcelFile", longer, "<Cell>", 3}, {u"ExcelFile", shorter, "<Cell ", 1}, {u"ExcelFile", removed, "<Cell ", 1},
        {u"RTFFile", longer, "\\clcbpat0\\cellx3000", 1}, {u"RTFFile", longer, "\\clcbpat16", 2},
        {u"RTFFile", u"a/1|2/1/1|2", "\\clcbpat0\\cellx2000", 2}, {u"RTFFile", shorter, "\\cellx2000", 1},
        {u"XMLFile", shorter, "\">1</>", 1}, {u"XMLFile", u"a|-/1|2", "\">", 1},
    };
    // clang-format on
    for (const auto& c : kCases) {
        const std::string file = Run(c.type, u"", c.set);
        int times = 0;
        for (std::size_t at = 0; (at = file.find(c.piece, at)) != file.npos; ++at) ++times;
        EXPECT_EQ(times, c.times) << ToUtf8(c.type) << ToUtf8(c.set) << c.piece;
    }
}

TEST_F(FileTarget, TellsNumbersFromTextInSpreadsheetsByTheColumn) {
    const auto number = [this](int data_type) {
        Describe(u"2");
        rows_.Columns[0].DataType = data_type;
        rows_.Row = testing_support::RowOf(u"1");
        EXPECT_TRUE(Open(u"", "cell.xml", u"ExcelFile") && target_->Write(error_, rows_));
        return folder_.Read("cell.xml").find("\"Number\">1<") != std::string::npos;
    };
    // BIGINT, NUMERIC, INTEGER, SMALLINT, FLOAT, REAL
    for (const int type : {-5, 2, 4, 5, 6, 7}) EXPECT_TRUE(number(type)) << type;
    // DECIMAL, DOUBLE, TINYINT, BIT, CHAR, VARCHAR, WVARCHAR, unknown
    for (const int type : {3, 8, -6, -7, 1, 12, -9, 0}) EXPECT_FALSE(number(type)) << type;
}

}  // namespace
