#include "platform/file_system.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "base/utf8.h"
#include "platform/posix/descriptor.h"
#include "platform/posix/native_path.h"
#include "platform/posix/open_file.h"
#include "platform/system_error.h"

namespace platform {
namespace {

std::optional<struct stat> StatusOf(int descriptor) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) return std::nullopt;
    return status;
}

bool IsRegularFile(int descriptor) {
    const auto status = StatusOf(descriptor);
    return status && S_ISREG(status->st_mode);
}

std::optional<struct stat> StatusOf(const String& name) {
    struct stat status {};
    if (HoldsZero(name) || ::stat(ToNativeBytes(name).c_str(), &status) != 0) return std::nullopt;
    return status;
}

// How a file is opened for writing. Its mark must be read before something is added to it. From a
// pipe or a device nothing is read: whoever holds the reading end open keeps a FIFO from waiting
// for its reader, and hears of no reader that has gone.
int WritingFlags(const String& name, OutputFile::Mode mode) {
    if (mode == OutputFile::Mode::CreateNew) return O_RDWR | O_CREAT | O_EXCL;
    const std::optional<struct stat> status = StatusOf(name);
    return status && !S_ISREG(status->st_mode) && !S_ISDIR(status->st_mode) ? O_WRONLY : O_RDWR;
}

class PosixInputFile final : public InputFile {
public:
    explicit PosixInputFile(Descriptor descriptor)
        : descriptor_(std::move(descriptor)), waits_(!IsRegularFile(descriptor_.Get())) {}

    std::optional<std::uint64_t> Size() override {
        if (waits_) return std::nullopt;
        const auto status = StatusOf(descriptor_.Get());
        if (!status) return std::nullopt;
        return static_cast<std::uint64_t>(status->st_size);
    }

protected:
    std::int64_t ReadSome(std::span<std::byte> bytes) override {
        if (waits_ && PauseListener::IsThere()) TellOfPause();
        return Uninterrupted([&] { return ::read(descriptor_.Get(), bytes.data(), bytes.size()); });
    }

private:
    void TellOfPause() const {
        pollfd wanted{descriptor_.Get(), POLLIN, 0};
        if (::poll(&wanted, 1, PauseListener::kPauseMs) == 0) PauseListener::Tell();
    }

    Descriptor descriptor_;
    const bool waits_;  // may have to wait for what is read
};

class PosixOutputFile final : public OutputFile {
public:
    PosixOutputFile(Descriptor descriptor, mode_t mode)
        : descriptor_(std::move(descriptor)), mode_(mode) {}

    bool IsRegular() const override { return S_ISREG(mode_); }
    bool IsTerminal() const override { return ::isatty(descriptor_.Get()) == 1; }

    bool Write(ErrorRecord& error, std::span<const std::byte> bytes) override {
        const std::size_t written = WriteFully(descriptor_.Get(), bytes);
        if (written == bytes.size()) return true;
        error = SystemError();
        CutBack(written);
        return false;
    }

    bool ReadAt(ErrorRecord& error, std::uint64_t position, std::span<std::byte> bytes,
                std::size_t& count) override {
        const ssize_t got = Uninterrupted([&] {
            return ::pread(descriptor_.Get(), bytes.data(), bytes.size(),
                           static_cast<off_t>(position));
        });
        if (got < 0) {
            error = SystemError();
            return false;
        }
        count = static_cast<std::size_t>(got);
        return true;
    }

    bool SeekEnd(ErrorRecord& error, std::uint64_t& position) override {
        position = 0;
        if (!S_ISREG(mode_) && !S_ISBLK(mode_)) return true;
        const off_t end = ::lseek(descriptor_.Get(), 0, SEEK_END);
        if (end < 0) {
            error = SystemError();
            return false;
        }
        position = static_cast<std::uint64_t>(end);
        return true;
    }

    bool Close(ErrorRecord& error) override {
        if (descriptor_.Close()) return true;
        error = SystemError();
        return false;
    }

private:
    // Takes the last `count` bytes off again; what is no regular file keeps them.
    void CutBack(std::size_t count) {
        if (count == 0 || !IsRegular()) return;
        const off_t start = ::lseek(descriptor_.Get(), -static_cast<off_t>(count), SEEK_CUR);
        if (start >= 0 && ::ftruncate(descriptor_.Get(), start) != 0)
            ::lseek(descriptor_.Get(), 0, SEEK_END);
    }

    Descriptor descriptor_;
    const mode_t mode_;  // what kind of file it is
};

}  // namespace

// Readers are not concerned. File systems that know no locks go without.
bool LockForWriting(int descriptor) {
    return ::flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

Named IsNamed(int descriptor, const std::string& name) {
    struct stat named {};
    const auto open = StatusOf(descriptor);
    if (!open) return Named::Unknown;
    if (::stat(name.c_str(), &named) != 0) return errno == ENOENT ? Named::No : Named::Unknown;
    const bool same = named.st_dev == open->st_dev && named.st_ino == open->st_ino;
    return same ? Named::Yes : Named::No;
}

Descriptor OpenLocked(const std::string& name, int flags) {
    for (;;) {
        Descriptor descriptor(OpenDescriptor(name, flags));
        if (descriptor.Get() < 0) return descriptor;
        const auto status = StatusOf(descriptor.Get());
        if (!status) return Descriptor(-1);
        if (!S_ISREG(status->st_mode)) return descriptor;
        if (!LockForWriting(descriptor.Get())) return Descriptor(-1);
        const Named named = IsNamed(descriptor.Get(), name);
        if (named == Named::Yes) return descriptor;
        if (named == Named::Unknown) return Descriptor(-1);
    }
}

std::unique_ptr<OutputFile> OutputFileOn(Descriptor descriptor) {
    return std::make_unique<PosixOutputFile>(std::move(descriptor), S_IFREG);
}

bool PathExists(const String& name) {
    return !HoldsZero(name) && ::access(ToNativeBytes(name).c_str(), F_OK) == 0;
}

String RootedName(const String& name) {
    namespace fs = std::filesystem;
    ErrorRecord ignored;
    const auto native = NativePath(ignored, name);
    if (!native) return name;
    std::error_code code;
    const fs::path path = fs::absolute(*native, code).lexically_normal();
    if (code) return name;
    return FromNativeBytes((path.has_filename() ? path : path.parent_path()).native());
}

std::optional<FileIdentity> IdentityOf(const String& name) {
    const std::optional<struct stat> status = StatusOf(name);
    if (!status) return std::nullopt;
    return FileIdentity{status->st_dev, status->st_ino};
}

std::unique_ptr<InputFile> InputFile::Open(ErrorRecord& error, const String& name) {
    const auto native = NativePath(error, name);
    if (!native) return nullptr;
    Descriptor descriptor(OpenDescriptor(*native, O_RDONLY));
    if (descriptor.Get() < 0) {
        error = SystemError();
        return nullptr;
    }
    const auto status = StatusOf(descriptor.Get());
    if (!status || S_ISDIR(status->st_mode)) {
        error = status ? SystemError(EISDIR) : SystemError();
        return nullptr;
    }
    return std::make_unique<PosixInputFile>(std::move(descriptor));
}

std::unique_ptr<InputFile> InputFile::StandardInput() {
    return std::make_unique<PosixInputFile>(Descriptor(STDIN_FILENO));
}

std::unique_ptr<OutputFile> OutputFile::Open(ErrorRecord& error, const String& name, Mode mode) {
    const auto native = NativePath(error, name);
    if (!native) return nullptr;
    Descriptor descriptor = OpenLocked(*native, WritingFlags(name, mode));
    const auto status = descriptor.Get() < 0 ? std::nullopt : StatusOf(descriptor.Get());
    // Emptied only now that nobody else is writing it.
    const bool empty = mode == Mode::Truncate && status && S_ISREG(status->st_mode);
    if (!status || (empty && !EmptyFile(descriptor.Get()))) {
        error = SystemError();
        return nullptr;
    }
    return std::make_unique<PosixOutputFile>(std::move(descriptor), status->st_mode);
}

}  // namespace platform
