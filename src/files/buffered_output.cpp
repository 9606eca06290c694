#include "files/buffered_output.h"

#include <utility>

BufferedOutput::BufferedOutput(std::unique_ptr<platform::OutputFile> file, std::size_t room)
    : file_(std::move(file)), room_(room) {}

bool BufferedOutput::Write(ErrorRecord& error, std::span<const std::byte> bytes) {
    if (gathered_.size() + bytes.size() > room_ && !Flush(error)) return false;
    if (bytes.size() > room_) return file_->Write(error, bytes);
    gathered_.insert(gathered_.end(), bytes.begin(), bytes.end());
    ends_.push_back(gathered_.size());
    return true;
}

bool BufferedOutput::Flush(ErrorRecord& error) {
    if (gathered_.empty()) return true;
    std::size_t arrived = gathered_.size();
    // A regular file has been cut back to where it was, so its pieces can be tried one by one.
    if (!file_->Write(error, gathered_)) arrived = file_->IsRegular() ? WritePieces(error) : 0;
    const std::size_t lost = gathered_.size() - arrived;
    lost_ += lost;
    gathered_.clear();
    ends_.clear();
    return lost == 0;
}

// Returns how many bytes arrived.
std::size_t BufferedOutput::WritePieces(ErrorRecord& error) {
    std::size_t start = 0;
    for (const std::size_t end : ends_) {
        if (!file_->Write(error, std::span(gathered_).subspan(start, end - start))) break;
        start = end;
    }
    return start;
}

bool BufferedOutput::Close(ErrorRecord& error) {
    const bool flushed = Flush(error);
    ErrorRecord unheard;
    return file_->Close(flushed ? error : unheard) && flushed;
}
