#include "consumers/file_target.h"

#include <utility>

#include "support/target_fixture.h"

namespace {

using FileTarget = testing_support::TargetFixture;

TEST_F(FileTarget, CountsTheBytesOfAllFilesThatAreContent) {
    const std::size_t mark = 3, declaration = 40, bracket = 1;
    // head: bytes at the start of each file that are not counted. tail: those of the last.
    const struct {
        const char16_t *type, *settings;
        std::size_t head, tail;
    } kCases[] = {
        {u"TextFile", u"Header=1|Encoding=UTF8", mark, 0},
        {u"SQLScript", u"Table=t|BatchSize=2|ColumnList=1|Encoding=UTF8", mark, 0},
        {u"DDLScript", u"Table=t|Encoding=Unicode|Delimiter=;", 2, 0},
        {u"XMLFile", u"set=s|row=r|item=i|name=n", mark + declaration, 0},
        {u"JSONFile", u"Encoding=UTF8", mark + bracket, bracket},
        {u"HtmlFile", u"Encoding=ANSI", 0, 0},
        {u"ExcelFile", u"", mark, 0},
        {u"RTFFile", u"", mark, 0},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(ToUtf8(c.type));
        const String settings = String(c.settings) + u"|Overwrite=1|OneFilePerResultSet=1";
        EXPECT_TRUE(Open(settings, "$TABLE$.out", c.type) &&
                    Write(u"a|b|c/1|\u00E9|int/2|y|z/3|p|q#d|e|f/4|~|r#g|h|i"))
            << ToUtf8(error_);
        std::size_t counted = 0;
        for (const char* name : {"t1.out", "t2.out", "t3.out"})
            counted += folder_.Read(name).size() - c.head;
        EXPECT_EQ(target_->WrittenSize(), counted - c.tail);
        EXPECT_TRUE(target_->Open(error_, {step_.Job(), Section::Target}));
        EXPECT_EQ(target_->WrittenSize(), 0u);
        target_.reset();
    }
}

TEST_F(FileTarget, WritesNothingAfterAFileThatCannotBeOpened) {
    for (const StringView type :
         {u"SQLScript", u"XMLFile", u"JSONFile", u"ExcelFile", u"HtmlFile", u"RTFFile"}) {
        SCOPED_TRACE(ToUtf8(type));
        ASSERT_TRUE(Open(u"Table=t|OneFilePerResultSet=1", "$TABLE$.out", type));
        const SectionSettings settings(step_.Job(), Section::Target);
        Describe(u"a");
        rows_.Row = testing_support::RowOf(u"1");
        step_.Job().Step(0).List(Section::Target).Set(u"Name", folder_.Path("missing/t2.out"));
        EXPECT_FALSE(target_->NextResultSet(error_, settings));
        EXPECT_TRUE(error_.starts_with(u"Could not open file for writing: ")) << ToUtf8(error_);
        error_.clear();
        EXPECT_FALSE(target_->Write(error_, rows_));
        EXPECT_EQ(ToUtf8(error_), type == u"JSONFile" ? "" : "File is not opened yet.");
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

TEST_F(FileTarget, NamesSheetsAsSpreadsheetsAllow) {
    const std::string longest(31, 'x');
    const std::pair<std::string, std::string> kSheets[] = {
        {"orders", "orders"},
        {"ORDERS", "ORDERS_2"},  // letter case does not tell sheets apart
        {"orders", "orders_3"},
        {"\\/?*[]:\t", "________"},
        {"'it's'", "_it's_"},
        {"'", "_"},
        {"a&<\"", "a&amp;&lt;&quot;"},
        {"", "Sheet1"},
        {"sheet2", "sheet2"},
        {"", "Sheet3"},
        {longest + "y", longest},
        {longest, longest.substr(2) + "_2"},
        {longest.substr(1) + "\xF0\x9F\x98\x80", longest.substr(1)},  // no half character
        {longest.substr(3) + "\xF0\x9F\x98\x80" + "x",
         longest.substr(3) + "\xF0\x9F\x98\x80" + "x"},
        {longest.substr(3) + "\xF0\x9F\x98\x80" + "X", longest.substr(3) + "_2"},
    };
    ASSERT_TRUE(Open(u"Form=Strict|Overwrite=1", "sheets.xml", u"ExcelFile"));
    bool first = true;
    for (const auto& [table, sheet] : kSheets) {
        Describe(u"a");
        rows_.TableName.clear();
        ASSERT_TRUE(FromUtf8(table, rows_.TableName));
        if (!std::exchange(first, false)) {
            ASSERT_TRUE(target_->NextResultSet(error_, {step_.Job(), Section::Target}));
        }
        ASSERT_TRUE(target_->Prepare(error_, rows_)) << ToUtf8(error_);
    }
    ASSERT_TRUE(target_->Close(error_)) << ToUtf8(error_);
    const std::string file = folder_.Read("sheets.xml");
    std::size_t at = 0;
    for (const auto& [table, sheet] : kSheets) {
        const std::string mark = "<Worksheet ss:Name=\"";
        at = file.find(mark, at) + mark.size();
        ASSERT_GE(at, mark.size()) << table;
        EXPECT_EQ(file.substr(at, file.find('"', at) - at), sheet) << table;
    }
}

}  // namespace
