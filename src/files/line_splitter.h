#pragma once

#include <vector>

#include "base/strings.h"

enum class OuterQuotes { Keep, Strip };

// Cuts a line into fields at `delimiter`, except between quotes.
// quote: its first character opens and closes quoted parts, and stays in the field; an empty text
//        means that there are none.
// OuterQuotes::Strip: a field of two characters or more that begins and ends with the quote loses
//        both. Nothing else is unescaped.
// fields: replaced by views into `line`, always at least one; the vector's room is reused.
void SplitLine(StringView line, char16_t delimiter, StringView quote, OuterQuotes outer,
               std::vector<StringView>& fields);
