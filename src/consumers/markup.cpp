#include "consumers/markup.h"

#include "consumers/escaping.h"

namespace {

// As "&#x%03X;" does.
void AppendReference(String& out, char16_t unit) {
    constexpr StringView kDigits = u"0123456789ABCDEF";
    out += u"&#x";
    if (unit > 0xFFF) out += kDigits[unit >> 12];
    for (int shift = 8; shift >= 0; shift -= 4) out += kDigits[(unit >> shift) & 0xF];
    out += u';';
}

void AppendEscape(String& out, char16_t unit) {
    switch (unit) {
        case u'"':
            out += u"&quot;";
            break;
        case u'&':
            out += u"&amp;";
            break;
        case u'\'':
            out += u"&apos;";
            break;
        case u'<':
            out += u"&lt;";
            break;
        case u'>':
            out += u"&gt;";
            break;
        default:
            AppendReference(out, unit);
    }
}

}  // namespace

void AppendMarkup(String& out, StringView text) {
    const auto is_escaped = [](auto unit) {
        return (unit == u'"') | (unit == u'&') | (unit == u'\'') | (unit == u'<') | (unit == u'>') |
               (unit >= u'\x80');
    };
    AppendEscaped(out, text, is_escaped, AppendEscape);
}
