#include "platform/posix/descriptor.h"

#include <poll.h>

#include <cerrno>

namespace platform {
namespace {

// A stream that a parent process made non-blocking is waited for like any other.
bool WaitUntilWritable(int descriptor) {
    pollfd wanted{descriptor, POLLOUT, 0};
    return ::poll(&wanted, 1, -1) > 0 || errno == EINTR;
}

}  // namespace

std::size_t WriteFully(int descriptor, std::span<const std::byte> bytes) {
    std::size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t count = ::write(descriptor, bytes.data() + written, bytes.size() - written);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0 && errno == EAGAIN && WaitUntilWritable(descriptor)) continue;
        if (count <= 0) break;
        written += static_cast<std::size_t>(count);
    }
    return written;
}

}  // namespace platform
