#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "base/error_record.h"
#include "base/strings.h"
#include "files/encoding.h"

// How the text of a file is stored: one of the four published encodings, or a code page.
struct FileEncoding {
    Encoding form = Encoding::Ansi;
    std::uint16_t code_page = 0;  // other than 0: this code page (CP1252, CP932), whatever the form
};

// What becomes of a character that an encoding lacks.
enum class Unmappable {
    Cut,      // its low byte (Ansi), and otherwise one "?"
    Replace,  // one "?"
    Stop,     // the text is refused
};

// Turns text into the bytes of one encoding, without a byte-order mark. Keeps its room between
// calls.
class TextEncoder {
public:
    virtual ~TextEncoder() = default;

    // bytes: the result, valid until the next call and as long as `text`.
    // Fails where the encoding lacks a character that must not be replaced, and names it and its
    // position in the text.
    virtual bool Encode(ErrorRecord& error, StringView text, std::span<const std::byte>& bytes) = 0;
    // Characters that were replaced so far, unpaired surrogates among them.
    std::uint64_t Replaced() const { return replaced_; }

protected:
    std::uint64_t replaced_ = 0;
};

// Fails for an encoding that cannot be written, or that the system does not know.
std::unique_ptr<TextEncoder> MakeTextEncoder(ErrorRecord& error, const FileEncoding& encoding,
                                             Unmappable unmappable);
