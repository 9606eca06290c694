#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "base/strings.h"

// How a file's text is stored, and the byte-order mark that says so. The numbers are the program's
// published encoding codes.
enum class Encoding : std::uint32_t {
    Ansi = 0,               // one byte a character: its low eight bits; no mark
    Utf16BigEndian = 1,     // mark FE FF; can be read, not written
    Utf16LittleEndian = 2,  // mark FF FE
    Utf8 = 3,               // mark EF BB BF
};

// The encoding that a job file's word asks for, letter for letter: "UTF16" and "Unicode" give
// UTF-16 little-endian, "UTF8" gives UTF-8, anything else Ansi.
Encoding EncodingFromWord(StringView word);

// What writers say of an encoding that cannot be written.
constexpr StringView kEncodingNotSupported = u"Encoding is not supported yet";

// Turns text into the bytes of an encoding, without a mark. Keeps its room between calls.
class PlainTextEncoder {
public:
    // bytes: the result, valid until the next call and as long as `text`.
    // False for an encoding that cannot be written.
    bool Encode(StringView text, Encoding encoding, std::span<const std::byte>& bytes);

private:
    void Narrow(StringView text);

    std::string bytes_;
};
