// Characters of UTF-16 text (the Unicode standard, section 3.9, D91).
#pragma once

#include <cstddef>

#include "base/strings.h"

inline bool IsSurrogate(char32_t character) { return character >= 0xD800 && character <= 0xDFFF; }

// The character at the start of `text`, which is not empty, and how many units it has. An unpaired
// surrogate stands for itself.
inline char32_t CharacterAt(StringView text, std::size_t& units) {
    const char16_t first = text.front();
    units = 1;
    if (first < 0xD800 || first > 0xDBFF || text.size() < 2) return first;
    const char16_t second = text[1];
    if (second < 0xDC00 || second > 0xDFFF) return first;
    units = 2;
    return 0x10000 + ((char32_t{first} - 0xD800) << 10) + (char32_t{second} - 0xDC00);
}
