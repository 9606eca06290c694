#include "consumers/markup.h"

#include <array>

#include "consumers/escaping.h"

namespace {

constexpr char16_t kFirstReferenced = 128;

// The entity of each unit below 128; empty for those that are copied.
constexpr std::array<StringView, kFirstReferenced> kEntities = [] {
    std::array<StringView, kFirstReferenced> entities{};
    entities[u'"'] = u"&quot;";
    entities[u'&'] = u"&amp;";
    entities[u'\''] = u"&apos;";
    entities[u'<'] = u"&lt;";
    entities[u'>'] = u"&gt;";
    return entities;
}();

bool IsEscaped(char16_t unit) { return unit >= kFirstReferenced || !kEntities[unit].empty(); }

// As "&#x%03X;" does.
void AppendReference(String& out, char16_t unit) {
    constexpr StringView kDigits = u"0123456789ABCDEF";
    out += u"&#x";
    if (unit > 0xFFF) out += kDigits[unit >> 12];
    for (int shift = 8; shift >= 0; shift -= 4) out += kDigits[(unit >> shift) & 0xF];
    out += u';';
}

void AppendEscape(String& out, char16_t unit) {
    if (unit >= kFirstReferenced) return AppendReference(out, unit);
    out += kEntities[unit];
}

}  // namespace

void AppendMarkup(String& out, StringView text) {
    AppendEscaped(out, text, IsEscaped, AppendEscape);
}
