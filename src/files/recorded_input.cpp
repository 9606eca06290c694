#include "files/recorded_input.h"

#include <utility>

RecordedInput::RecordedInput(std::unique_ptr<platform::InputFile> stream)
    : stream_(std::move(stream)) {}

std::int64_t RecordedInput::ReadSome(std::span<std::byte> bytes) {
    const std::size_t count = stream_->Read(bytes);
    if (start_ended_) {
        start_ = {};
    } else {
        start_.insert(start_.end(), bytes.begin(),
                      bytes.begin() + static_cast<std::ptrdiff_t>(count));
    }
    return stream_->Failed() ? -1 : static_cast<std::int64_t>(count);
}

std::shared_ptr<platform::SpoolFile> RecordedInput::Spool(String& error) {
    constexpr std::size_t kPieceBytes = 65'536;
    ErrorRecord reason;
    std::shared_ptr<platform::SpoolFile> spool = platform::SpoolFile::Make(reason);
    bool kept = spool && spool->Append(reason, start_);
    std::vector<std::byte> piece(kPieceBytes);
    while (kept) {
        const std::size_t count = stream_->Read(piece);
        if (count == 0) break;
        kept = spool->Append(reason, std::span(piece).first(count));
    }
    if (!kept) {
        error = u"Could not keep the input for a second reading: " + reason.text;
    } else if (stream_->Failed()) {
        error = u"Could not read the file to its end.";
    }
    if (!kept || stream_->Failed()) spool.reset();
    return spool;
}
