// The bytes of a file before they are text.
#pragma once

#include <cstddef>
#include <cstring>
#include <span>

#include "files/encoding.h"

using RawText = std::span<const unsigned char>;

inline RawText AsRawText(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()};
}

inline bool IsWide(Encoding encoding) {
    return encoding == Encoding::Utf16BigEndian || encoding == Encoding::Utf16LittleEndian;
}

// The first byte of the wanted value; null when there is none.
inline const unsigned char* FindByte(RawText bytes, unsigned char wanted) {
    if (bytes.empty()) return nullptr;  // memchr wants a real address
    return static_cast<const unsigned char*>(std::memchr(bytes.data(), wanted, bytes.size()));
}

// The UTF-16 unit at the start of `bytes`, which are not empty. A single last byte is taken as if a
// zero came after it.
inline char16_t UnitAtStart(RawText bytes, bool little_endian) {
    const unsigned first = bytes[0];
    const unsigned second = bytes.size() > 1 ? bytes[1] : 0u;
    return static_cast<char16_t>(little_endian ? first | (second << 8) : (first << 8) | second);
}
