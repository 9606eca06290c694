// Kernel handles behind the program's files and streams.
#pragma once

#include <windows.h>

#include <cstddef>
#include <span>
#include <utility>

namespace platform {

// Owns a handle and closes it, unless it is borrowed from the process (a standard stream).
class Handle {
public:
    enum class Ownership { Owned, Borrowed };
    explicit Handle(HANDLE handle, Ownership ownership = Ownership::Owned)
        : handle_(handle), ownership_(ownership) {}
    Handle(Handle&& other) noexcept
        : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)),
          ownership_(other.ownership_) {}
    Handle& operator=(Handle&&) = delete;
    ~Handle() {
        if (ownership_ == Ownership::Owned && Valid()) ::CloseHandle(handle_);
    }
    bool Valid() const { return handle_ != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return handle_; }
    // Closes it now, if it is owned; false when the system tells of a failure.
    bool Close() {
        const bool owned = ownership_ == Ownership::Owned && Valid();
        const HANDLE handle = std::exchange(handle_, INVALID_HANDLE_VALUE);
        return !owned || ::CloseHandle(handle) != FALSE;
    }

private:
    HANDLE handle_;
    Ownership ownership_;
};

// Writes all of `bytes`, in one call unless there are more than a call takes. Returns how many
// arrived; GetLastError() tells why fewer did.
std::size_t WriteFully(HANDLE handle, std::span<const std::byte> bytes);

}  // namespace platform
