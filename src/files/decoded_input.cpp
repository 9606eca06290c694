#include "files/decoded_input.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <utility>

namespace {

// Bytes of a character that the end of a piece may cut in two, in any encoding.
constexpr std::size_t kMostOfOneCharacter = 16;

}  // namespace

DecodedInput::DecodedInput(std::unique_ptr<platform::InputFile> stream,
                           std::unique_ptr<TextDecoder> decoder, std::size_t skipped,
                           std::size_t piece_bytes)
    : stream_(std::move(stream)),
      decoder_(std::move(decoder)),
      size_(stream_->Size()),
      offset_(skipped),
      piece_bytes_(piece_bytes),
      buffer_(piece_bytes + kMostOfOneCharacter) {}

// What is there is taken at once: who types the text waits for an answer.
bool DecodedInput::More(std::size_t drop) {
    text_.erase(0, drop);
    std::erase_if(bad_, [drop](const BadBytes& bad) { return bad.position < drop; });
    for (BadBytes& bad : bad_) bad.position -= drop;
    if (ended_) return false;
    const std::size_t read = stream_->Read(std::span(buffer_).subspan(filled_, piece_bytes_));
    filled_ += read;
    ended_ = read == 0;
    Decode();
    return true;
}

// Takes the text of the bytes that are there. A character that is cut in two waits for its rest.
void DecodedInput::Decode() {
    const std::span<const std::byte> bytes = std::span(buffer_).first(filled_);
    std::size_t taken = 0;
    while (taken < filled_) {
        std::size_t invalid = 0;
        taken += decoder_->Decode(bytes.subspan(taken), ended_, text_, invalid);
        if (invalid == 0) break;
        bad_.push_back({text_.size(), offset_ + taken});
        text_ += u'\uFFFD';
        taken += invalid;
    }
    filled_ -= taken;
    offset_ += taken;
    if (filled_ != 0) std::memmove(buffer_.data(), buffer_.data() + taken, filled_);
}

std::optional<double> DecodedInput::Share() const {
    if (!size_ || *size_ == 0) return std::nullopt;
    return std::min(1.0, static_cast<double>(offset_) / static_cast<double>(*size_));
}
