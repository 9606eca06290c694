#include "consumers/cell_date.h"

#include <gtest/gtest.h>

#include "base/utf8.h"

namespace {

TEST(CellDate, TakesDatesThatSpreadsheetsKeep) {
    const std::pair<const char16_t*, const char16_t*> kCases[] = {
        {u"2005-08-16", u"2005-08-16T00:00:00.000"},
        {u"2005-08-16 23:59:59", u"2005-08-16T23:59:59.000"},
        {u"2005-08-16T00:00:00.5", u"2005-08-16T00:00:00.500"},
        {u"2005-08-16 23:42:55.1230", u"2005-08-16T23:42:55.123"},
        {u"2005-08-16 23:42:55.1234", u""},
        {u"2005-08-16 23:42:55.", u""},
        {u"2005-08-16 23:42:55,5", u""},
        {u"2005-08-16 23:42:55.5x", u""},
        {u"2005-08-16 24:00:00", u""},
        {u"2005-08-16 23:60:00", u""},
        {u"2005-08-16 23:59:60", u""},
        {u"2005-08-16 23:42", u""},
        {u"2005-08-16-23:42:55", u""},
        {u"2005-08-16 ", u""},
        {u"2005-8-16", u""},
        {u"2005/08/16", u""},
        {u"20a5-08-16", u""},
        {u"", u""},
        // The calendar.
        {u"1901-01-01", u"1901-01-01T00:00:00.000"},
        {u"1900-12-31", u""},
        {u"9999-12-31", u"9999-12-31T00:00:00.000"},
        {u"2005-00-10", u""},
        {u"2005-13-10", u""},
        {u"2005-01-00", u""},
        {u"2004-02-29", u"2004-02-29T00:00:00.000"},
        {u"2000-02-29", u"2000-02-29T00:00:00.000"},
        {u"2100-02-29", u""},
        {u"2005-02-29", u""},
        {u"2004-02-30", u""},
    };
    for (const auto& [text, expected] : kCases) {
        String cell;
        const DataConsumers::DateStyle style = DataConsumers::MakeCellDate(text, cell);
        EXPECT_EQ(ToUtf8(cell), ToUtf8(expected)) << ToUtf8(text);
        EXPECT_EQ(style == DataConsumers::DateStyle::None, cell.empty()) << ToUtf8(text);
        EXPECT_EQ(style == DataConsumers::DateStyle::Date,
                  !cell.empty() && StringView(text).size() == 10);
    }
    constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    for (int month = 1; month <= 12; ++month) {
        for (const int day : {kDays[month - 1], kDays[month - 1] + 1}) {
            const std::string date =
                "2005-" + std::to_string(100 + month).substr(1) + "-" + std::to_string(day);
            String text;
            ASSERT_TRUE(FromUtf8(date, text));
            String cell;
            EXPECT_EQ(DataConsumers::MakeCellDate(text, cell) == DataConsumers::DateStyle::Date,
                      day == kDays[month - 1])
                << date;
        }
    }
}

}  // namespace
