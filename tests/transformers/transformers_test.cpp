#include "transformers/data_transformer.h"

#include "support/target_fixture.h"

namespace {

class Transformer : public testing::Test {
protected:
    bool Make(StringView settings) {
        return DataTransformers::DataTransformer::Create(
            error_, step_.With(Section::Transform, testing_support::SettingsOf(settings)),
            transformer_);
    }
    // Has the columns and a row changed, and shows them: names, types, literal marks and values,
    // "-" before what is removed.
    std::string Transformed(StringView names, StringView row) {
        RowSet rows;
        for (const String& name : testing_support::Split(names, u'|')) {
            rows.Columns.emplace_back(name, 12, u"", 0);
            rows.Columns.back().LiteralPrefix = rows.Columns.back().LiteralSuffix = u"'";
        }
        String shown;
        if (!row.empty()) rows.Row = testing_support::RowOf(row);
        EXPECT_TRUE(transformer_->Transform(error_, rows));
        for (const ColumnDefinition& column : rows.Columns) {
            EXPECT_TRUE(column.DataType == 12 && column.LocalTypeName == column.TypeName);
            shown += (column.Included ? u"" : u"-") + column.Name + u":" + column.TypeName +
                     column.LiteralPrefix + column.LiteralSuffix + u" ";
        }
        for (const DataValue& value : rows.Row)
            shown += (value.Included ? u"/" : u"/-") + value.Text + (value.IsNull ? u" null" : u"");
        return ToUtf8(shown);
    }

    testing_support::OneStep step_;
    std::unique_ptr<DataTransformers::DataTransformer> transformer_;
    String error_;
};

TEST_F(Transformer, ChangesColumnsOnceAndValuesAlways) {
    // What becomes of two columns without a row, and of a row of three columns, those of a second
    // result set. The last value comes removed.
    const std::string same = "a:'' b:'' ", next = "a:'' b:'' c:'' ";
    // clang-format off
    const struct { const char16_t* settings; std::string columns; std::string row; } kCases[] = {
        {u"Type=removecolumn|ApplyTo=2,9", "a:'' -b:'' ", "/xx/-~ null/--"},
        {u"Type=RemoveColumn|ApplyTo=1,3", "-a:'' b:'' ", "/-xx/~ null/--"},
        {u"Type=RENAMECOLUMN|ApplyTo=2|NewName=new", "a:'' new:'' ", "/xx/~ null/--"},
        {u"Type=RenameColumn|ApplyTo=3|NewName=new", same, "/xx/~ null/--"},
        {u"Type=ChangeDataType|ApplyTo=1|NewType=NUMBER", "a:NUMBER b:'' ", "/xx/~ null/--"},
        {u"Type=ChangeDataType|ApplyTo=1|NewType=decimal", "a:decimal'' b:'' ", "/xx/~ null/--"},
        {u"Type=ChangeDataType|ApplyTo=3|NewType=integer", same, "/xx/~ null/--"},
        {u"Type=ReplaceString|ApplyTo=*|From=x|To=xy", same, "/xyxy/~ null/--"},
        {u"Type=ReplaceString|ApplyTo=2|From=~|To=x", same, "/xx/~ null/--"},
        {u"Type=ReplaceString|ApplyTo=3|From=-|To=x", same, "/xx/~ null/--"},
    };
    // clang-format on
    for (const auto& c : kCases) {
        SCOPED_TRACE(ToUtf8(c.settings));
        ASSERT_TRUE(Make(c.settings)) << ToUtf8(error_);
        EXPECT_EQ(Transformed(u"a|b", u""), c.columns);
        EXPECT_EQ(Transformed(u"a|b|c", u"xx|~|-"), next + c.row);
    }
    // A first call that meets a row marks its values, too.
    ASSERT_TRUE(Make(u"Type=RemoveColumn|ApplyTo=1"));
    EXPECT_EQ(Transformed(u"a", u"x|y"), "-a:'' /-x/y");
}

TEST_F(Transformer, ReadsColumnNumbers) {
    // column: the one of three that is meant, 0 for none of them, -1 where the number is refused.
    const std::pair<String, int> kCases[] = {
        {u"00", -1}, {u"1", 1},    {u"+2", 2},      {u"-1", 0},  {u"18446744073709551618", 0},
        {u"2.9", 2}, {u"4", 0},    {u"-0", -1},     {u" 2", 2},  {u"4294967297", 0},
        {u"*", -1},  {u"3abc", 3}, {u"\u0663", -1}, {u"x1", -1}, {u" ", -1},
    };
    for (const auto& [number, column] : kCases) {
        SCOPED_TRACE(ToUtf8(number));
        EXPECT_EQ(Make(u"Type=ChangeDataType|NewType=x|ApplyTo=" + number), column >= 0);
        EXPECT_EQ(Make(u"Type=RemoveColumn|ApplyTo=" + number), column >= 0);
        EXPECT_EQ(Make(u"Type=RenameColumn|NewName=new|ApplyTo=" + number), column >= 0);
        EXPECT_TRUE(transformer_) << "one is handed out even when its settings are refused";
        const auto name = [column = column](int i) { return column == i ? "new:'' " : "old:'' "; };
        if (column < 0) continue;
        EXPECT_EQ(Transformed(u"old|old|old", u""), std::string(name(1)) + name(2) + name(3));
    }
}

}  // namespace
