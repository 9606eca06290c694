#include "files/line_splitter.h"

StringView StripOuterQuotes(StringView field, StringView quote) {
    if (quote.empty() || field.size() < 2) return field;
    const bool quoted = field.front() == quote.front() && field.back() == quote.front();
    return quoted ? field.substr(1, field.size() - 2) : field;
}

void SplitLine(StringView line, char16_t delimiter, StringView quote, OuterQuotes outer,
               std::vector<StringView>& fields) {
    fields.clear();
    const StringView stripped = outer == OuterQuotes::Strip ? quote : StringView{};
    SplitLine(line, delimiter, quote,
              [&](StringView field) { fields.push_back(StripOuterQuotes(field, stripped)); });
}
