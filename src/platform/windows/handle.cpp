#include "platform/windows/handle.h"

#include <algorithm>

namespace platform {

std::size_t WriteFully(HANDLE handle, std::span<const std::byte> bytes) {
    constexpr std::size_t kMostPerCall = 0x40000000;
    std::size_t written = 0;
    while (written < bytes.size()) {
        const std::size_t wanted = std::min(bytes.size() - written, kMostPerCall);
        DWORD count = 0;
        if (::WriteFile(handle, bytes.data() + written, static_cast<DWORD>(wanted), &count,
                        nullptr) == FALSE ||
            count == 0) {
            break;
        }
        written += count;
    }
    return written;
}

}  // namespace platform
