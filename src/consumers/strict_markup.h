#pragma once

#include <cstdint>

#include "base/strings.h"
#include "files/text_encoder.h"

namespace DataConsumers {

// Writes texts into XML or HTML so that a reader gives them back unit for unit, as text or as the
// value of an attribute. "&", "<", ">" and the double quote become entities, and what a reader
// would change becomes a reference: TAB, CR and LF in XML (XML 1.0, sections 2.11 and 3.3.3), CR in
// HTML. Everything else stays as it is where the encoding has it, otherwise it is a reference, too.
//
// Unpaired surrogates are left to the encoding, or written as U+FFFD and counted.
class StrictMarkup {
public:
    // unicode: the document's encoding has every character.
    static StrictMarkup ForXml(Unmappable unmappable, bool unicode);
    static StrictMarkup ForHtml(Unmappable unmappable, bool unicode);

    // Appends `text`. A character that the language lacks is left out, becomes U+FFFD, or fails
    // with "The character U+%04X cannot be written in %s."
    bool Append(String& error, StringView text, String& out);

    // Characters that became U+FFFD.
    std::uint64_t Replaced() const { return replaced_; }

private:
    // What tells the languages apart.
    struct Language {
        StringView name;
        char16_t last_escaped_control;  // controls up to this one are escaped or not there at all
        char16_t first_odd;             // and units from this one up may be
        bool (*lacks)(char32_t character, bool unicode);
    };

    StrictMarkup(const Language& language, Unmappable unmappable, bool unicode);
    std::size_t AppendEscape(String& out, StringView rest);
    void AppendLacking(String& out, char32_t character);

    static bool XmlLacks(char32_t character, bool unicode);
    static bool HtmlLacks(char32_t character, bool unicode);

    Language language_;
    Unmappable unmappable_;
    bool unicode_;
    char16_t first_odd_;
    char32_t refused_ = 0;
    bool failed_ = false;
    std::uint64_t replaced_ = 0;
};

}  // namespace DataConsumers
