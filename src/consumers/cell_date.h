#pragma once

#include "base/strings.h"

namespace DataConsumers {

// How a spreadsheet shows a date.
enum class DateStyle { None, Date, Timestamp };

// Takes a text of a column of dates, "2005-08-16" or "2005-08-16 23:42:55.5", and makes of it the
// "2005-08-16T23:42:55.500" of a cell. None, and nothing made, for any other text: for dates that
// are none, those before 1901, which spreadsheets count in different ways, and parts of a second
// that they do not keep.
DateStyle MakeCellDate(StringView text, String& cell);

}  // namespace DataConsumers
