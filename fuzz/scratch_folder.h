#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

// A folder in memory that is the current one from the first use on, and gone at the end.
class ScratchFolder {
public:
    static void Enter() { static const ScratchFolder folder; }

    static void Write(const char* name, std::string_view bytes) {
        std::ofstream(name, std::ios::binary | std::ios::trunc) << bytes;
    }

private:
    ScratchFolder() : path_("/dev/shm/quillon-fuzz-" + std::to_string(::getpid())) {
        std::filesystem::create_directories(path_);
        if (::chdir(path_.c_str()) != 0) std::abort();
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::string path_;
};
