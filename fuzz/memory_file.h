#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "base/utf8.h"

// A file that exists in memory only, under a name that can be opened.
class MemoryFile {
public:
    MemoryFile(const std::uint8_t* data, std::size_t size)
        : descriptor_(::memfd_create("fuzz", 0)) {
        if (::write(descriptor_, data, size) != static_cast<ssize_t>(size)) ::abort();
    }
    ~MemoryFile() { ::close(descriptor_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    String Name() const { return FromNativeBytes("/proc/self/fd/" + std::to_string(descriptor_)); }

private:
    int descriptor_;
};
