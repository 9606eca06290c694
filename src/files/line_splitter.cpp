#include "files/line_splitter.h"

#include "files/unit_search.h"

namespace {

StringView StripOuter(StringView field, char16_t quote) {
    const bool quoted = field.size() >= 2 && field.front() == quote && field.back() == quote;
    return quoted ? field.substr(1, field.size() - 2) : field;
}

}  // namespace

void SplitLine(StringView line, char16_t delimiter, StringView quote, OuterQuotes outer,
               std::vector<StringView>& fields) {
    const bool has_quote = !quote.empty();
    // Without a quote its unit is the delimiter as well: one search then serves both, and whatever
    // it stops at is a delimiter.
    const char16_t quote_unit = has_quote ? quote.front() : delimiter;
    const bool strip = has_quote && outer == OuterQuotes::Strip;
    const auto end_field = [&](const char16_t* begin, const char16_t* end) {
        const StringView field(begin, static_cast<std::size_t>(end - begin));
        fields.push_back(strip ? StripOuter(field, quote_unit) : field);
    };

    fields.clear();
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
