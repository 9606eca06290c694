#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "base/error_record.h"
#include "base/strings.h"
#include "files/encoding.h"

// What becomes of a character that an encoding lacks.
enum class Unmappable {
    Cut,      // Ansi: the low byte of each unit; UTF-16: units as they are; otherwise one "?"
    Replace,  // one "?"
    Stop,     // the text is refused
};

// Turns text into the bytes of one encoding, without a byte-order mark. Keeps its room between
// calls. An unpaired surrogate is written as U+FFFD (UTF-8, UTF-16) or is a character that the
// encoding lacks.
class TextEncoder {
public:
    virtual ~TextEncoder() = default;

    // bytes: the result, valid until the next call and as long as `text`.
    // Fails with "Character U+%04X does not exist in the encoding %s." where a character must not
    // be replaced, and with "Encoding is not supported yet" for UTF-16 big-endian. Nothing of the
    // text is to be written then.
    virtual bool Encode(ErrorRecord& error, StringView text, std::span<const std::byte>& bytes) = 0;
    // Characters that became U+FFFD or "?" so far.
    std::uint64_t Replaced() const { return replaced_; }

protected:
    std::uint64_t replaced_ = 0;
};

// Whether an encoder can be made: what MakeTextEncoder says, before anything is opened or emptied.
bool KnowsEncoding(ErrorRecord& error, const FileEncoding& encoding);

// Fails, with null, with "Encoding %s is not known on this system." for a code page.
std::unique_ptr<TextEncoder> MakeTextEncoder(ErrorRecord& error, const FileEncoding& encoding,
                                             Unmappable unmappable);
