#pragma once

#include "base/strings.h"
#include "files/unit_search.h"

// Appends `text` to `out` with some units escaped. is_escaped tells which, in the manner of
// FindUnit; escape(out, unit) appends what stands for one. All between them is copied in runs.
template <class Escaped, class Escape>
void AppendEscaped(String& out, StringView text, const Escaped& is_escaped, const Escape& escape) {
    const char16_t* const end = text.data() + text.size();
    for (const char16_t* at = text.data();; ++at) {
        const char16_t* const found = FindUnit(at, end, is_escaped);
        out.append(at, found);
        if (found == end) return;
        escape(out, *found);
        at = found;
    }
}
