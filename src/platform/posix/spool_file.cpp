#include "platform/spool_file.h"

#include <unistd.h>

#include <cstdlib>
#include <string>

#include "platform/posix/descriptor.h"
#include "platform/system_error.h"

namespace platform {
namespace {

class PosixSpoolFile final : public SpoolFile {
public:
    explicit PosixSpoolFile(Descriptor descriptor) : descriptor_(std::move(descriptor)) {}

    bool Append(ErrorRecord& error, std::span<const std::byte> bytes) override {
        const std::size_t written = WriteFully(descriptor_.Get(), bytes);
        size_ += written;
        if (written == bytes.size()) return true;
        error = SystemError();
        return false;
    }

    std::int64_t ReadAt(std::uint64_t position, std::span<std::byte> bytes) override {
        return Uninterrupted([&] {
            return ::pread(descriptor_.Get(), bytes.data(), bytes.size(),
                           static_cast<off_t>(position));
        });
    }

    std::uint64_t Size() const override { return size_; }

private:
    const Descriptor descriptor_;
    std::uint64_t size_ = 0;
};

}  // namespace

std::shared_ptr<SpoolFile> SpoolFile::Make(ErrorRecord& error) {
    const char* const folder = std::getenv("TMPDIR");
    std::string name = folder != nullptr && *folder != '\0' ? folder : "/tmp";
    name += "/quillon-XXXXXX";
    Descriptor descriptor(::mkstemp(name.data()));
    if (descriptor.Get() < 0) {
        error = SystemError();
        return nullptr;
    }
    ::unlink(name.c_str());  // the descriptor keeps the bytes, whatever becomes of this run
    return std::make_shared<PosixSpoolFile>(std::move(descriptor));
}

}  // namespace platform
