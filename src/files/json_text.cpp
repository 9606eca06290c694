#include "files/json_text.h"

#include "files/unit_search.h"

namespace {

void AppendEscape(String& out, char16_t unit) {
    constexpr StringView kDigits = u"0123456789abcdef";
    constexpr StringView kNamed = u"\b\f\n\r\t";
    constexpr StringView kLetters = u"bfnrt";
    out += u'\\';
    if (unit >= u' ') {
        out += unit;
    } else if (const std::size_t at = kNamed.find(unit); at != StringView::npos) {
        out += kLetters[at];
    } else {
        out += u"u00";
        out += kDigits[unit >> 4];
        out += kDigits[unit & 0xF];
    }
}

}  // namespace

void AppendJsonString(String& out, StringView text) {
    const auto is_escaped = [](auto unit) {
        return (unit == u'"') | (unit == u'\\') | (unit <= u'\x1F');
    };
    const char16_t* const end = text.data() + text.size();
    out += u'"';
    for (const char16_t* at = text.data();; ++at) {
        const char16_t* const found = FindUnit(at, end, is_escaped);
        out.append(at, found);
        if (found == end) break;
        AppendEscape(out, *found);
        at = found;
    }
    out += u'"';
}
