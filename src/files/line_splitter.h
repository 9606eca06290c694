#pragma once

#include <cstddef>
#include <vector>

#include "base/strings.h"
#include "files/unit_search.h"

// Cuts a line into fields at `delimiter`, except between quotes.
// quote: its first character opens and closes quoted parts, and stays in the field; an empty text
//        means that there are none.
// take_field: called with each field, a view into `line`; at least once.
template <class TakeField>
void SplitLine(StringView line, char16_t delimiter, StringView quote, const TakeField& take_field) {
    const bool has_quote = !quote.empty();
    // Without a quote its unit is the delimiter as well: one search then serves both, and whatever
    // it stops at is a delimiter.
    const char16_t quote_unit = has_quote ? quote.front() : delimiter;
    const auto end_field = [&](const char16_t* begin, const char16_t* end) {
        take_field(StringView(begin, static_cast<std::size_t>(end - begin)));
    };

    const char16_t* const end = line.data() + line.size();
    const char16_t* field = line.data();
    bool inside = false;
    for (const char16_t* at = field;; ++at) {
        // Inside quotes a delimiter is no place to stop at: only the quote that closes them is.
        const char16_t closing = inside ? quote_unit : delimiter;
        at = FindUnit(at, end, [=](auto unit) { return (unit == quote_unit) | (unit == closing); });
        if (at == end) break;
        if (has_quote && *at == quote_unit) inside = !inside;
        if (*at == delimiter && !inside) {  // also a delimiter that is the quote and closed it
            end_field(field, at);
            field = at + 1;
        }
    }
    end_field(field, end);
}

// A field of two characters or more that begins and ends with the first character of `quote` loses
// both. Nothing else is unescaped.
StringView StripOuterQuotes(StringView field, StringView quote);

enum class OuterQuotes { Keep, Strip };

// The same with the fields in a list.
// outer: what becomes of the quotes around a field; see StripOuterQuotes.
// fields: replaced by views into `line`, always at least one; the vector's room is reused.
void SplitLine(StringView line, char16_t delimiter, StringView quote, OuterQuotes outer,
               std::vector<StringView>& fields);
