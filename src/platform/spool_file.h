#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "base/error_record.h"
#include "platform/file_system.h"

namespace platform {

// Bytes that are kept on the disk until nobody holds them any more, in a file of the system's
// folder for such that no one else gets to see.
class SpoolFile {
public:
    virtual ~SpoolFile() = default;

    // On failure returns null and `error` holds the system's text and code.
    static std::shared_ptr<SpoolFile> Make(ErrorRecord& error);

    // Adds all of `bytes` at the end; false, with the system's text, when they do not fit.
    virtual bool Append(ErrorRecord& error, std::span<const std::byte> bytes) = 0;
    // Reads at most bytes.size() bytes from a position. Returns the count, 0 at the end, -1 on
    // failure.
    virtual std::int64_t ReadAt(std::uint64_t position, std::span<std::byte> bytes) = 0;
    virtual std::uint64_t Size() const = 0;

    // Reads the bytes from their start.
    static std::unique_ptr<InputFile> Read(std::shared_ptr<SpoolFile> spool);
};

}  // namespace platform
