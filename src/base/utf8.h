// Conversion between UTF-16 and UTF-8 (RFC 3629).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/strings.h"
#include "base/utf16.h"

// Appends `text` to `bytes` as UTF-8. Surrogate pairs become four bytes; an unpaired surrogate
// becomes U+FFFD (EF BF BD), so the result is always valid UTF-8.
void AppendUtf8(StringView text, std::string& bytes);

std::string ToUtf8(StringView text);

// Strict decoding: replaces `text` with the characters of `bytes` and returns true. On any invalid
// sequence (overlong, surrogate, above U+10FFFF, cut short) returns false; `text` is then what had
// been decoded so far.
bool FromUtf8(std::string_view bytes, String& text);

// The code point at `position`, which is moved past it. An unpaired surrogate comes out as itself.
inline char32_t TakeCodePoint(StringView text, std::size_t& position) {
    std::size_t units = 0;
    const char32_t point = CharacterAt(text.substr(position), units);
    position += units;
    return point;
}

// AppendUtf8 into room that the caller has: three bytes a unit. Returns where the result ends.
// replaced: grows by the unpaired surrogates.
char* EncodeUtf8(StringView text, char* to, std::uint64_t& replaced);

// Decodes into room that the caller has: a unit a byte. Returns how many bytes were taken: all, or
// those before the first that begin no valid character. `to` is moved behind the result.
std::size_t DecodeUtf8(std::string_view bytes, char16_t*& to);
// How many of `bytes`, which begin no valid character, begin one that goes wrong later: what the
// Unicode standard (section 3.9) calls a maximal subpart; at least 1.
// cut_short: true when nothing but the end of `bytes` is wrong with it.
std::size_t InvalidUtf8Length(std::string_view bytes, bool& cut_short);

// The position, from `start` on, of the first half of a surrogate pair that stands alone; npos when
// there is none.
std::size_t FindUnpairedSurrogate(StringView text, std::size_t start = 0);

// Decodes bytes that name something in the system (a path, an argument, a variable). A byte that
// is not part of valid UTF-8 becomes the unpaired surrogate U+DC00 + byte, so that ToNativeBytes
// can give it back unchanged.
String FromNativeBytes(std::string_view bytes);

// The inverse of FromNativeBytes: UTF-8, with every U+DC80 to U+DCFF that stands alone as its byte.
std::string ToNativeBytes(StringView text);
