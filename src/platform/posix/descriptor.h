// File descriptors behind the program's files and streams.
#pragma once

#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <span>
#include <string>
#include <utility>

namespace platform {

// Owns a descriptor; closes it unless it is one of the standard streams.
class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&&) = delete;
    ~Descriptor() {
        if (number_ > STDERR_FILENO) ::close(number_);
    }
    int Get() const { return number_; }
    // Closes it now; false when the system tells of a failure. The number is gone all the same.
    bool Close() {
        const int number = std::exchange(number_, -1);
        return number <= STDERR_FILENO || ::close(number) == 0;
    }

private:
    int number_;
};

// Makes a call again for as long as a signal comes in between (EINTR), which is nobody's failure.
// Not for close(): the descriptor is gone by then. call: returns a negative number, with errno set,
// when it fails
template <typename Call>
auto Uninterrupted(const Call& call) {
    auto result = call();
    while (result < 0 && errno == EINTR) result = call();
    return result;
}

// Opens `name`, which no child inherits; -1, with errno set, when it cannot be opened.
// mode: the rights of a new file, less the user's umask
inline int OpenDescriptor(const std::string& name, int flags, mode_t mode = 0666) {
    return Uninterrupted([&] { return ::open(name.c_str(), flags | O_CLOEXEC | O_NOCTTY, mode); });
}

// Takes all of a file's bytes away; false, with errno set, when they stay.
inline bool EmptyFile(int descriptor) {
    return Uninterrupted([&] { return ::ftruncate(descriptor, 0); }) == 0;
}

// Whether the disk holds what was written; errno tells why not.
inline bool FlushToDisk(int descriptor) {
    return Uninterrupted([&] { return ::fsync(descriptor); }) == 0;
}

// Writes all of `bytes`, in one call unless the system takes them piecemeal. Returns how many
// arrived; errno tells why fewer did.
std::size_t WriteFully(int descriptor, std::span<const std::byte> bytes);

}  // namespace platform
