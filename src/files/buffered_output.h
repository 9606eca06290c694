#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "platform/file_system.h"

// Gathers what is written to a file, so that many pieces reach it in one write.
class BufferedOutput final : public platform::OutputFile {
public:
    // room: how many bytes are gathered at most; a longer piece is written by itself.
    BufferedOutput(std::unique_ptr<platform::OutputFile> file, std::size_t room);

    // A failure may be that of pieces before, see Flush.
    bool Write(ErrorRecord& error, std::span<const std::byte> bytes) override;
    // Writes what has been gathered. On failure a regular file ends behind the last piece that it
    // has room for, and the rest is dropped.
    bool Flush(ErrorRecord& error) override;
    // Flushes and closes.
    bool Close(ErrorRecord& error) override;

    bool IsRegular() const override { return file_->IsRegular(); }
    bool ReadAt(ErrorRecord& error, std::uint64_t position, std::span<std::byte> bytes,
                std::size_t& count) override {
        return file_->ReadAt(error, position, bytes, count);
    }
    bool SeekEnd(ErrorRecord& error, std::uint64_t& position) override {
        return file_->SeekEnd(error, position);
    }

    // Bytes that were taken and dropped.
    std::uint64_t Lost() const { return lost_; }

private:
    std::size_t WritePieces(ErrorRecord& error);

    std::unique_ptr<platform::OutputFile> file_;
    const std::size_t room_;
    std::vector<std::byte> gathered_;
    std::vector<std::size_t> ends_;  // of the pieces in gathered_
    std::uint64_t lost_ = 0;
};
