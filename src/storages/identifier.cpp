#include "storages/identifier.h"

#include "files/unit_search.h"

namespace sql {

void AppendDoubling(String& statement, StringView text, char16_t quote) {
    const auto is_quote = [=](auto unit) { return unit == quote; };
    const char16_t* const end = text.data() + text.size();
    for (const char16_t* at = text.data();;) {
        const char16_t* const found = FindUnit(at, end, is_quote);
        statement.append(at, found);
        if (found == end) return;
        statement.append(2, quote);
        at = found + 1;
    }
}

void AppendIdentifier(String& statement, StringView name, StringView quote) {
    if (quote.empty()) {
        statement += name;
        return;
    }
    statement += quote;
    AppendDoubling(statement, name, quote.front());
    statement += quote;
}

void AppendBetweenQuotes(String& statement, StringView name) {
    statement += u'"';
    statement += name;
    statement += u'"';
}

}  // namespace sql
