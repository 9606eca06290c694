#include "config/kept_files.h"

#include <algorithm>
#include <span>

namespace {

// Bytes in memory, read as the pipe was that they came from: they have no known length.
class KeptFile final : public platform::InputFile {
public:
    explicit KeptFile(std::span<const std::byte> bytes) : rest_(bytes) {}

    std::optional<std::uint64_t> Size() override { return std::nullopt; }

protected:
    std::int64_t ReadSome(std::span<std::byte> bytes) override {
        const std::size_t count = std::min(bytes.size(), rest_.size());
        std::copy_n(rest_.begin(), count, bytes.begin());
        rest_ = rest_.subspan(count);
        return static_cast<std::int64_t>(count);
    }

private:
    std::span<const std::byte> rest_;
};

// A file whose failure to be read is noted; it fails whenever one has been.
class WatchedFile final : public platform::InputFile {
public:
    WatchedFile(std::unique_ptr<platform::InputFile> file, bool& failed)
        : file_(std::move(file)), read_failed_(failed) {}

    std::optional<std::uint64_t> Size() override { return file_->Size(); }

protected:
    std::int64_t ReadSome(std::span<std::byte> bytes) override {
        if (read_failed_) return -1;
        const std::size_t count = file_->Read(bytes);
        read_failed_ = file_->Failed();
        return read_failed_ ? -1 : static_cast<std::int64_t>(count);
    }

private:
    std::unique_ptr<platform::InputFile> file_;
    bool& read_failed_;
};

}  // namespace

std::unique_ptr<platform::InputFile> KeptFiles::Open(ErrorRecord& error, const String& name) {
    Failure& failure = failures_[name];
    if (failure.opening) {
        error = *failure.opening;
        return nullptr;
    }
    auto kept = kept_.find(name);
    if (kept == kept_.end()) {
        std::unique_ptr<platform::InputFile> file = platform::InputFile::Open(error, name);
        if (!file) failure.opening = error;
        if (!file) return nullptr;
        if (file->CanReopen()) {
            return std::make_unique<WatchedFile>(std::move(file), failure.reading);
        }
        constexpr std::size_t kPieceBytes = 65'536;
        std::vector<std::byte> bytes;
        std::size_t filled = 0;
        do {
            bytes.resize(filled + kPieceBytes);
            filled += file->ReadFully(std::span(bytes).subspan(filled));
        } while (filled == bytes.size());
        bytes.resize(filled);
        if (file->Failed()) return file;  // whoever reads on meets the failure
        kept = kept_.emplace(name, std::move(bytes)).first;
    }
    return std::make_unique<KeptFile>(kept->second);
}
