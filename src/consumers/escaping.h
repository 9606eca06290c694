#pragma once

#include <cstddef>

#include "base/strings.h"
#include "files/unit_search.h"

// Appends `text` to `out` with some units escaped. is_escaped tells which, in the manner of
// FindUnit; escape(out, rest) appends what stands for the first character of `rest` and returns how
// many units that has. All between them is copied in runs.
template <class Escaped, class Escape>
void AppendEscapedCharacters(String& out, StringView text, const Escaped& is_escaped,
                             const Escape& escape) {
    const char16_t* const end = text.data() + text.size();
    for (const char16_t* at = text.data();;) {
        const char16_t* const found = FindUnit(at, end, is_escaped);
        out.append(at, found);
        if (found == end) return;
        at = found + escape(out, StringView(found, end));
    }
}

// The same for escapes of single units: escape(out, unit).
template <class Escaped, class Escape>
void AppendEscaped(String& out, StringView text, const Escaped& is_escaped, const Escape& escape) {
    AppendEscapedCharacters(out, text, is_escaped, [&escape](String& to, StringView rest) {
        escape(to, rest.front());
        return std::size_t{1};
    });
}
