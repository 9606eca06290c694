// File descriptors behind the program's files and streams.
#pragma once

#include <unistd.h>

#include <cstddef>
#include <span>
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
    // False when the system tells only now that what was written did not arrive; errno tells why.
    bool Close() { return ::close(std::exchange(number_, -1)) == 0; }

private:
    int number_;
};

// Writes all of `bytes`, in one call unless the system takes them piecemeal. Returns how many
// arrived; errno tells why fewer did.
std::size_t WriteFully(int descriptor, std::span<const std::byte> bytes);

}  // namespace platform
