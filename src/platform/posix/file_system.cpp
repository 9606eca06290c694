#include "platform/file_system.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "base/utf8.h"
#include "platform/posix/descriptor.h"
#include "platform/system_error.h"

namespace platform {
namespace {

struct stat StatusOf(int descriptor) {
    struct stat status {};
    ::fstat(descriptor, &status);
    return status;
}

std::uint64_t SizeOf(int descriptor) {
    const struct stat status = StatusOf(descriptor);
    return S_ISREG(status.st_mode) ? static_cast<std::uint64_t>(status.st_size) : 0;
}

class PosixInputFile final : public InputFile {
public:
    explicit PosixInputFile(Descriptor descriptor) : descriptor_(std::move(descriptor)) {}

    std::uint64_t Size() override { return SizeOf(descriptor_.Get()); }

protected:
    std::int64_t ReadSome(std::span<std::byte> bytes) override {
        ssize_t count = 0;
        do {
            count = ::read(descriptor_.Get(), bytes.data(), bytes.size());
        } while (count < 0 && errno == EINTR);
        return count;
    }

private:
    Descriptor descriptor_;
};

class PosixOutputFile final : public OutputFile {
public:
    explicit PosixOutputFile(Descriptor descriptor) : descriptor_(std::move(descriptor)) {}

    bool Write(ErrorRecord& error, std::span<const std::byte> bytes) override {
        const std::size_t written = WriteFully(descriptor_.Get(), bytes);
        if (written == bytes.size()) return true;
        error = SystemError();
        CutBack(written);
        return false;
    }

    bool ReadStart(ErrorRecord& error, std::span<std::byte> bytes, std::size_t& count) override {
        const ssize_t got = ::pread(descriptor_.Get(), bytes.data(), bytes.size(), 0);
        if (got < 0) {
            error = SystemError();
            return false;
        }
        count = static_cast<std::size_t>(got);
        return true;
    }

    std::uint64_t SeekEnd() override {
        const off_t position = ::lseek(descriptor_.Get(), 0, SEEK_END);
        return position < 0 ? 0 : static_cast<std::uint64_t>(position);
    }

private:
    // Takes the last `count` bytes off again; what is no regular file keeps them.
    void CutBack(std::size_t count) {
        if (count == 0 || !S_ISREG(StatusOf(descriptor_.Get()).st_mode)) return;
        const off_t start = ::lseek(descriptor_.Get(), -static_cast<off_t>(count), SEEK_CUR);
        if (start >= 0 && ::ftruncate(descriptor_.Get(), start) != 0)
            ::lseek(descriptor_.Get(), 0, SEEK_END);
    }

    Descriptor descriptor_;
};

int FlagsOf(OutputFile::Mode mode) {
    switch (mode) {
        case OutputFile::Mode::CreateNew:
            return O_CREAT | O_EXCL;
        case OutputFile::Mode::Truncate:
            return O_TRUNC;
        case OutputFile::Mode::OpenExisting:
            break;
    }
    return 0;
}

constexpr mode_t kNewFileMode = 0666;  // less the user's umask

}  // namespace

bool PathExists(const String& name) { return ::access(ToNativeBytes(name).c_str(), F_OK) == 0; }

std::unique_ptr<InputFile> InputFile::Open(ErrorRecord& error, const String& name) {
    Descriptor descriptor(::open(ToNativeBytes(name).c_str(), O_RDONLY | O_CLOEXEC));
    if (descriptor.Get() < 0) {
        error = SystemError();
        return nullptr;
    }
    if (S_ISDIR(StatusOf(descriptor.Get()).st_mode)) {
        error = SystemError(EISDIR);
        return nullptr;
    }
    return std::make_unique<PosixInputFile>(std::move(descriptor));
}

std::unique_ptr<InputFile> InputFile::StandardInput() {
    return std::make_unique<PosixInputFile>(Descriptor(STDIN_FILENO));
}

std::unique_ptr<OutputFile> OutputFile::Open(ErrorRecord& error, const String& name, Mode mode) {
    const int flags = O_RDWR | O_CLOEXEC | FlagsOf(mode);
    Descriptor descriptor(::open(ToNativeBytes(name).c_str(), flags, kNewFileMode));
    if (descriptor.Get() < 0) {
        error = SystemError();
        return nullptr;
    }
    return std::make_unique<PosixOutputFile>(std::move(descriptor));
}

}  // namespace platform
