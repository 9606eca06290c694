#include "platform/spool_file.h"

#include <utility>

namespace platform {
namespace {

class SpoolInput final : public InputFile {
public:
    explicit SpoolInput(std::shared_ptr<SpoolFile> spool) : spool_(std::move(spool)) {}
    std::optional<std::uint64_t> Size() override { return spool_->Size(); }

protected:
    std::int64_t ReadSome(std::span<std::byte> bytes) override {
        const std::int64_t count = spool_->ReadAt(position_, bytes);
        if (count > 0) position_ += static_cast<std::uint64_t>(count);
        return count;
    }

private:
    const std::shared_ptr<SpoolFile> spool_;
    std::uint64_t position_ = 0;
};

}  // namespace

std::unique_ptr<InputFile> SpoolFile::Read(std::shared_ptr<SpoolFile> spool) {
    return std::make_unique<SpoolInput>(std::move(spool));
}

}  // namespace platform
