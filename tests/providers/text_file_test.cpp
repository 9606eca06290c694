#include "providers/text_file.h"

#include "support/one_step.h"

namespace {

// What a step with a text target does not show of the columns.
TEST(TextFileSource, DescribesColumnsByTypeWords) {
    const testing_support::ScratchFolder folder;
    folder.Write("in.txt", "a\tb\tc\td\te\tf\tg\n");
    const testing_support::Settings settings{
        {u"Name", folder.Path("in.txt")}, {u"DataTypes", u"integer,short,number,float,,INTEGER"}};
    testing_support::OneStep step;
    DataProviders::TextFile source;
    RowSet rows;
    String error;
    EXPECT_TRUE(source.Open(error, step.With(Section::Source, settings), rows)) << ToUtf8(error);
    std::string described;
    for (const ColumnDefinition& c : rows.Columns)
        described += ToUtf8(c.TypeName + c.LiteralPrefix + c.LiteralSuffix) +
                     std::to_string(c.DataType) + (c.Nullable ? " " : " not null ");
    EXPECT_EQ(described, "integer4 integer4 number6 number6 varchar''-9 varchar''-9 varchar''-9 ");
}

}  // namespace
