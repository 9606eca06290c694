#include "consumers/strict_markup.h"

#include "base/utf16.h"
#include "consumers/escaping.h"
#include "files/format.h"

namespace DataConsumers {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

StringView EntityOf(char16_t unit) {
    switch (unit) {
        case u'&':
            return u"&amp;";
        case u'<':
            return u"&lt;";
        case u'>':
            return u"&gt;";
        case u'"':
            return u"&quot;";
        case u'\t':
            return u"&#9;";
        case u'\n':
            return u"&#10;";
        case u'\r':
            return u"&#13;";
        default:
            return {};
    }
}

void AppendReference(String& out, char32_t character) {
    out += Format(u"&#x%X;", static_cast<std::uint32_t>(character));
}

}  // namespace

// XML 1.0, section 2.2.
bool StrictMarkup::XmlLacks(char32_t character, bool /*unicode*/) {
    return character < 0x20 || character == 0xFFFE || character == 0xFFFF;
}

// HTML, section 13.2.3.5 and 13.2.5.80: readers drop U+0000, and take a reference to U+0080 and so
// on for a character of code page 1252. So those can stand as they are or not at all.
bool StrictMarkup::HtmlLacks(char32_t character, bool unicode) {
    return character == 0 || (!unicode && character >= 0x80 && character <= 0x9F);
}

StrictMarkup StrictMarkup::ForXml(Unmappable unmappable, bool unicode) {
    return {{u"XML", u'\x1F', u'\xFFFE', XmlLacks}, unmappable, unicode};
}

StrictMarkup StrictMarkup::ForHtml(Unmappable unmappable, bool unicode) {
    return {{u"HTML", u'\0', u'\xFFFF', HtmlLacks}, unmappable, unicode};
}

StrictMarkup::StrictMarkup(const Language& language, Unmappable unmappable, bool unicode)
    : language_(language),
      unmappable_(unmappable),
      unicode_(unicode),
      first_odd_(unicode ? language.first_odd : u'\x80') {}

bool StrictMarkup::Append(String& error, StringView text, String& out) {
    const auto is_escaped = [last = language_.last_escaped_control, first = first_odd_](auto unit) {
        return (unit == u'&') | (unit == u'<') | (unit == u'>') | (unit == u'"') | (unit == u'\r') |
               (unit <= last) | (unit >= first);
    };
    failed_ = false;
    AppendEscapedCharacters(out, text, is_escaped,
                            [this](String& to, StringView rest) { return AppendEscape(to, rest); });
    if (!failed_) return true;
    error = Format(u"The character U+%04X cannot be written in %s.",
                   static_cast<std::uint32_t>(refused_), language_.name);
    return false;
}

// Returns how many units it took.
std::size_t StrictMarkup::AppendEscape(String& out, StringView rest) {
    if (const StringView entity = EntityOf(rest.front()); !entity.empty()) {
        out += entity;
        return 1;
    }
    std::size_t units = 1;
    char32_t character = CharacterAt(rest, units);
    if (language_.lacks(character, unicode_)) {
        AppendLacking(out, character);
    } else if (character < 0x80 || unicode_) {
        out += rest.substr(0, units);
    } else {
        if (IsSurrogate(character)) {
            character = kReplacement;
            ++replaced_;
        }
        AppendReference(out, character);
    }
    return units;
}

void StrictMarkup::AppendLacking(String& out, char32_t character) {
    switch (unmappable_) {
        case Unmappable::Cut:
            break;
        case Unmappable::Replace:
            ++replaced_;
            if (unicode_) {
                out += static_cast<char16_t>(kReplacement);
            } else {
                AppendReference(out, kReplacement);
            }
            break;
        case Unmappable::Stop:
            if (!failed_) refused_ = character;
            failed_ = true;
    }
}

}  // namespace DataConsumers
