#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "base/strings.h"
#include "platform/file_system.h"
#include "platform/spool_file.h"

// A stream that can be read only once, whose first bytes are kept in case that all of it is to be
// spooled after all.
class RecordedInput final : public platform::InputFile {
public:
    explicit RecordedInput(std::unique_ptr<platform::InputFile> stream);

    // What has been read so far was the start: the next read forgets it.
    void EndStart() { start_ended_ = true; }
    // Takes all of the stream, its start included, to a spool file. Nothing may have been read
    // since EndStart. Fails with "Could not keep the input for a second reading: " and the system's
    // text, and with "Could not read the file to its end.".
    std::shared_ptr<platform::SpoolFile> Spool(String& error);

    std::optional<std::uint64_t> Size() override { return stream_->Size(); }

protected:
    std::int64_t ReadSome(std::span<std::byte> bytes) override;

private:
    std::unique_ptr<platform::InputFile> stream_;
    bool start_ended_ = false;
    std::vector<std::byte> start_;
};
