// The casts between the program's text and the wide Win32 calls: the same code units, two types.
#pragma once

#include "base/strings.h"

namespace platform {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

inline const wchar_t* AsWide(const String& text) {
    return reinterpret_cast<const wchar_t*>(text.c_str());
}
inline wchar_t* AsWide(char16_t* text) { return reinterpret_cast<wchar_t*>(text); }
inline StringView FromWide(const wchar_t* text, std::size_t length) {
    return {reinterpret_cast<const char16_t*>(text), length};
}

}  // namespace platform
