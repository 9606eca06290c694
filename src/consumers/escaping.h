#pragma once

#include "base/strings.h"

// Appends `text` to `out` with some units escaped. needs_escape(unit) tells which; escape(out,
// unit) appends what stands for one. All between them is copied in runs.
template <class NeedsEscape, class Escape>
void AppendEscaped(String& out, StringView text, const NeedsEscape& needs_escape,
                   const Escape& escape) {
    std::size_t copied = 0;  // how much of the text is in `out`
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!needs_escape(text[i])) continue;
        out += text.substr(copied, i - copied);
        escape(out, text[i]);
        copied = i + 1;
    }
    out += text.substr(copied);
}
