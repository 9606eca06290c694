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

namespace {

// What closes the quotes that a character opens, or nothing.
char16_t ClosingOf(char16_t unit) {
    if (unit == u'[') return u']';
    return unit == u'"' || unit == u'`' ? unit : u'\0';
}

}  // namespace

std::vector<StringView> PiecesOf(StringView name) {
    std::vector<StringView> pieces;
    std::size_t start = 0;
    char16_t closing = 0;  // of the quotes that we are in
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (closing != 0) {
            if (name[i] == closing) closing = 0;
        } else if (name[i] == u'.') {
            pieces.push_back(name.substr(start, i - start));
            start = i + 1;
        } else {
            closing = ClosingOf(name[i]);
        }
    }
    pieces.push_back(name.substr(start));
    return pieces;
}

String PlainName(StringView piece) {
    const char16_t closing = piece.size() < 2 ? u'\0' : ClosingOf(piece.front());
    if (closing == 0 || piece.back() != closing) return String(piece);
    String name;
    const StringView inside = piece.substr(1, piece.size() - 2);
    for (std::size_t i = 0; i < inside.size(); ++i) {
        name += inside[i];
        if (inside[i] == closing && inside.substr(i + 1).starts_with(closing)) ++i;
    }
    return name;
}

}  // namespace sql
