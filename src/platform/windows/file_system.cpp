#include "platform/file_system.h"

#include <windows.h>

#include <algorithm>

#include "platform/system_error.h"
#include "platform/windows/handle.h"
#include "platform/windows/wide.h"

namespace platform {
namespace {

// Moves by `distance` from `origin`; the new position, or -1.
std::int64_t Move(HANDLE handle, std::int64_t distance, DWORD origin) {
    LARGE_INTEGER wanted{};
    wanted.QuadPart = distance;
    LARGE_INTEGER position{};
    return ::SetFilePointerEx(handle, wanted, &position, origin) == FALSE ? -1 : position.QuadPart;
}

class WindowsInputFile final : public InputFile {
public:
    explicit WindowsInputFile(Handle handle) : handle_(std::move(handle)) {}

    std::optional<std::uint64_t> Size() override {
        LARGE_INTEGER size{};
        if (::GetFileType(handle_.Get()) != FILE_TYPE_DISK) return std::nullopt;
        if (::GetFileSizeEx(handle_.Get(), &size) == FALSE) return std::nullopt;
        return static_cast<std::uint64_t>(size.QuadPart);
    }

protected:
    std::int64_t ReadSome(std::span<std::byte> bytes) override {
        constexpr std::size_t kMostPerCall = 0x40000000;
        const auto wanted = static_cast<DWORD>(std::min(bytes.size(), kMostPerCall));
        DWORD count = 0;
        if (::ReadFile(handle_.Get(), bytes.data(), wanted, &count, nullptr) != FALSE) return count;
        return ::GetLastError() == ERROR_BROKEN_PIPE ? 0 : -1;  // the writer of a pipe is done
    }

private:
    Handle handle_;
};

class WindowsOutputFile final : public OutputFile {
public:
    explicit WindowsOutputFile(Handle handle) : handle_(std::move(handle)) {}

    bool Write(ErrorRecord& error, std::span<const std::byte> bytes) override {
        ::SetLastError(ERROR_SUCCESS);
        const std::size_t written = WriteFully(handle_.Get(), bytes);
        if (written == bytes.size()) return true;
        const DWORD code = ::GetLastError();  // a write that was cut short may set none
        error = SystemError(code == ERROR_SUCCESS ? ERROR_DISK_FULL : code);
        CutBack(written);
        return false;
    }

    bool ReadStart(ErrorRecord& error, std::span<std::byte> bytes, std::size_t& count) override {
        DWORD got = 0;
        if (Move(handle_.Get(), 0, FILE_BEGIN) < 0 ||
            ::ReadFile(handle_.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &got,
                       nullptr) == FALSE) {
            error = SystemError();
            return false;
        }
        count = got;
        return true;
    }

    std::uint64_t SeekEnd() override {
        return static_cast<std::uint64_t>(
            std::max<std::int64_t>(Move(handle_.Get(), 0, FILE_END), 0));
    }

private:
    // Takes the last `count` bytes off again.
    void CutBack(std::size_t count) {
        if (count == 0) return;
        if (Move(handle_.Get(), -static_cast<std::int64_t>(count), FILE_CURRENT) < 0) return;
        ::SetEndOfFile(handle_.Get());
    }

    Handle handle_;
};

DWORD DispositionOf(OutputFile::Mode mode) {
    switch (mode) {
        case OutputFile::Mode::CreateNew:
            return CREATE_NEW;
        case OutputFile::Mode::Truncate:
            return TRUNCATE_EXISTING;
        case OutputFile::Mode::OpenExisting:
            break;
    }
    return OPEN_EXISTING;
}

}  // namespace

bool PathExists(const String& name) {
    return ::GetFileAttributesW(AsWide(name)) != INVALID_FILE_ATTRIBUTES;
}

std::unique_ptr<InputFile> InputFile::Open(ErrorRecord& error, const String& name) {
    Handle handle(::CreateFileW(AsWide(name), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!handle.Valid()) {
        error = SystemError();
        return nullptr;
    }
    return std::make_unique<WindowsInputFile>(std::move(handle));
}

std::unique_ptr<InputFile> InputFile::StandardInput() {
    return std::make_unique<WindowsInputFile>(
        Handle(::GetStdHandle(STD_INPUT_HANDLE), Handle::Ownership::Borrowed));
}

std::unique_ptr<OutputFile> OutputFile::Open(ErrorRecord& error, const String& name, Mode mode) {
    SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    Handle handle(::CreateFileW(AsWide(name), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ,
                                &inheritable, DispositionOf(mode), FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!handle.Valid()) {
        error = SystemError();
        return nullptr;
    }
    return std::make_unique<WindowsOutputFile>(std::move(handle));
}

}  // namespace platform
