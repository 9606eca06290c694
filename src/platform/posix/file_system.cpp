#include "platform/file_system.h"

#include <fcntl.h>
#include <sys/file.h>
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

bool IsRegular(int descriptor) { return S_ISREG(StatusOf(descriptor).st_mode); }

// Keeps other writers away, who would write over each other. Readers are not concerned.
bool LockForWriting(int descriptor) {
    if (!IsRegular(descriptor)) return true;
    return ::flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

class PosixInputFile final : public InputFile {
public:
    explicit PosixInputFile(Descriptor descriptor) : descriptor_(std::move(descriptor)) {}

    std::optional<std::uint64_t> Size() override {
        const struct stat status = StatusOf(descriptor_.Get());
        if (!S_ISREG(status.st_mode)) return std::nullopt;
        return static_cast<std::uint64_t>(status.st_size);
    }

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
        if (count == 0 || !IsRegular(descriptor_.Get())) return;
        const off_t start = ::lseek(descriptor_.Get(), -static_cast<off_t>(count), SEEK_CUR);
        if (start >= 0 && ::ftruncate(descriptor_.Get(), start) != 0)
            ::lseek(descriptor_.Get(), 0, SEEK_END);
    }

    Descriptor descriptor_;
};

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
    const int flags = O_RDWR | O_CLOEXEC | (mode == Mode::CreateNew ? O_CREAT | O_EXCL : 0);
    Descriptor descriptor(::open(ToNativeBytes(name).c_str(), flags, kNewFileMode));
    const bool opened = descriptor.Get() >= 0 && LockForWriting(descriptor.Get());
    // Emptied only now that nobody else is writing it.
    const bool empty = mode == Mode::Truncate && opened && IsRegular(descriptor.Get());
    if (!opened || (empty && ::ftruncate(descriptor.Get(), 0) != 0)) {
        error = SystemError();
        return nullptr;
    }
    return std::make_unique<PosixOutputFile>(std::move(descriptor));
}

}  // namespace platform
