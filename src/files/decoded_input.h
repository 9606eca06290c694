#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "base/strings.h"
#include "files/encoding.h"
#include "files/text_decoder.h"
#include "platform/file_system.h"

// The text of a file or of standard input, decoded a piece at a time. Memory follows the longest
// text that a caller leaves in it, not the file.
class DecodedInput {
public:
    // Bytes that are no text of the encoding. U+FFFD stands for them.
    struct BadBytes {
        std::size_t position;  // in Text()
        std::uint64_t offset;  // in the file, from 0
    };

    // skipped: bytes of the file before the first that `stream` gives, such as its mark.
    // piece_bytes: how many bytes are read at once, at most.
    DecodedInput(std::unique_ptr<platform::InputFile> stream, std::unique_ptr<TextDecoder> decoder,
                 std::size_t skipped, std::size_t piece_bytes);

    // What has been decoded and not yet been dropped.
    StringView Text() const { return text_; }
    // The bad bytes in it, in their order.
    const std::vector<BadBytes>& Bad() const { return bad_; }

    // Drops the first `drop` characters and appends those of a further piece, which may be none.
    // Returns false once there is no further piece: Text() then ends with the file.
    bool More(std::size_t drop);

    // True when reading ended because the system could not read on.
    bool Failed() const { return stream_->Failed(); }
    // Unpaired surrogates that became U+FFFD so far.
    std::uint64_t Replaced() const { return decoder_->Replaced(); }
    // True when the stream gives the same bytes if it is opened once more.
    bool CanReopen() const { return stream_->CanReopen(); }
    // How many bytes of the file have been read, from its start.
    std::uint64_t ReadBytes() const { return offset_ + filled_; }
    // How much of the file has been read, where its length is known.
    std::optional<double> Share() const;

private:
    void Decode();

    std::unique_ptr<platform::InputFile> stream_;
    std::unique_ptr<TextDecoder> decoder_;
    const std::optional<std::uint64_t> size_;
    std::uint64_t offset_;  // in the file, of the first byte of buffer_
    const std::size_t piece_bytes_;
    std::vector<std::byte> buffer_;
    std::size_t filled_ = 0;
    bool ended_ = false;
    String text_;
    std::vector<BadBytes> bad_;
};
