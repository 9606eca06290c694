#include "platform/spool_file.h"

#include <windows.h>

#include <algorithm>
#include <utility>

#include "platform/system_error.h"
#include "platform/windows/handle.h"

namespace platform {
namespace {

class WindowsSpoolFile final : public SpoolFile {
public:
    explicit WindowsSpoolFile(Handle handle) : handle_(std::move(handle)) {}

    bool Append(ErrorRecord& error, std::span<const std::byte> bytes) override {
        ::SetLastError(ERROR_SUCCESS);
        LARGE_INTEGER end{};
        end.QuadPart = static_cast<LONGLONG>(size_);
        std::size_t written = 0;
        if (::SetFilePointerEx(handle_.Get(), end, nullptr, FILE_BEGIN) != FALSE) {
            written = WriteFully(handle_.Get(), bytes);
        }
        size_ += written;
        if (written == bytes.size()) return true;
        error = SystemError();
        return false;
    }

    std::int64_t ReadAt(std::uint64_t position, std::span<std::byte> bytes) override {
        constexpr std::size_t kMostPerCall = 0x40000000;
        LARGE_INTEGER start{};
        start.QuadPart = static_cast<LONGLONG>(position);
        if (::SetFilePointerEx(handle_.Get(), start, nullptr, FILE_BEGIN) == FALSE) return -1;
        const auto wanted = static_cast<DWORD>(std::min(bytes.size(), kMostPerCall));
        DWORD count = 0;
        return ::ReadFile(handle_.Get(), bytes.data(), wanted, &count, nullptr) != FALSE
                   ? static_cast<std::int64_t>(count)
                   : -1;
    }

    std::uint64_t Size() const override { return size_; }

private:
    const Handle handle_;
    std::uint64_t size_ = 0;
};

}  // namespace

std::shared_ptr<SpoolFile> SpoolFile::Make(ErrorRecord& error) {
    wchar_t folder[MAX_PATH + 1] = {};
    wchar_t name[MAX_PATH + 1] = {};
    const bool named =
        ::GetTempPathW(MAX_PATH, folder) != 0 && ::GetTempFileNameW(folder, L"qui", 0, name) != 0;
    Handle handle(named
                      ? ::CreateFileW(name, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                      FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr)
                      : INVALID_HANDLE_VALUE);
    if (!handle.Valid()) {
        error = SystemError();
        return nullptr;
    }
    return std::make_shared<WindowsSpoolFile>(std::move(handle));
}

}  // namespace platform
