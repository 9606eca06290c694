#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "base/error_record.h"
#include "base/strings.h"
#include "files/encoding.h"

// Turns the bytes of one encoding into text, a piece at a time.
class TextDecoder {
public:
    virtual ~TextDecoder() = default;

    // Appends the text of `bytes` to `text` and returns how many bytes were taken. Fewer than all
    // were taken where
    //   - the last character is cut off by the end of `bytes`: hand the rest in again with what
    //     follows it (last: nothing follows, so the rest is invalid);
    //   - the bytes behind those taken are invalid: `invalid` is then the length of the shortest
    //     piece to skip, from 1 up; otherwise it is 0.
    virtual std::size_t Decode(std::span<const std::byte> bytes, bool last, String& text,
                               std::size_t& invalid) = 0;
    // Unpaired surrogates of UTF-16 that became U+FFFD so far.
    std::uint64_t Replaced() const { return replaced_; }

protected:
    std::uint64_t replaced_ = 0;
};

// Fails, with null, with "Encoding %s is not known on this system." for a code page. A byte-order
// mark is decoded like any character; callers take it off before.
std::unique_ptr<TextDecoder> MakeTextDecoder(ErrorRecord& error, const FileEncoding& encoding);
