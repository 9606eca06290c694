#pragma once

#include <cstdint>
#include <optional>

#include "base/strings.h"

// How a file's text is stored, and the byte-order mark that says so. The numbers are the program's
// published encoding codes.
enum class Encoding : std::uint32_t {
    Ansi = 0,               // one byte a character: its low eight bits; no mark
    Utf16BigEndian = 1,     // mark FE FF; can be read, not written
    Utf16LittleEndian = 2,  // mark FF FE
    Utf8 = 3,               // mark EF BB BF
};

// How the text of a file is stored: one of the four published encodings, or a code page.
struct FileEncoding {
    Encoding form = Encoding::Ansi;
    std::optional<std::uint32_t> code_page = {};  // with one, `form` is Ansi and means nothing

    bool operator==(const FileEncoding&) const = default;
};

// The encoding that a word names: "CP1252". Numbers that stand for UTF-8 (65001) and UTF-16 (1200,
// 1201) are these. word: the letters "CP", in any letter case, and digits.
FileEncoding EncodingOfCodePage(StringView word);

// What messages call an encoding: "ANSI", "UTF8", "UTF16", "CP1252".
String NameOf(const FileEncoding& encoding);

// What writers say of an encoding that cannot be written.
constexpr StringView kEncodingNotSupported = u"Encoding is not supported yet";
