#include "platform/posix/descriptor.h"

#include <poll.h>

namespace platform {
namespace {

// A stream that a parent process made non-blocking is waited for like any other.
bool WaitUntilWritable(int descriptor) {
    pollfd wanted{descriptor, POLLOUT, 0};
    return Uninterrupted([&] { return ::poll(&wanted, 1, -1); }) > 0;
}

}  // namespace

std::size_t WriteFully(int descriptor, std::span<const std::byte> bytes) {
    std::size_t written = 0;
    while (written < bytes.size()) {
        const std::span<const std::byte> rest = bytes.subspan(written);
        const ssize_t count =
            Uninterrupted([&] { return ::write(descriptor, rest.data(), rest.size()); });
        if (count < 0 && errno == EAGAIN && WaitUntilWritable(descriptor)) continue;
        if (count <= 0) break;
        written += static_cast<std::size_t>(count);
    }
    return written;
}

}  // namespace platform
