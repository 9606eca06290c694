#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

#include "base/strings.h"

namespace testing_support {

namespace fs = std::filesystem;

// A folder of its own for one test, with everything in it removed at the end. Names inside it are
// UTF-8 and may hold "/" for files in folders below it.
class ScratchFolder {
public:
    ScratchFolder() {
        std::random_device random;
        while (!fs::create_directory(folder_))
            folder_ = fs::temp_directory_path() / ("quillon-test-" + std::to_string(random()));
    }
    ~ScratchFolder() {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    // The full path of `name`, as the program takes it; without a name that of the folder itself.
    String Path(std::string_view name = {}) const { return NativePath(name).u16string(); }

    // Makes the file, or replaces it.
    void Write(std::string_view name, std::string_view bytes) const {
        std::ofstream file(NativePath(name), std::ios::binary);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        EXPECT_TRUE(file.flush()) << "could not write " << name;
    }
    // The bytes of the file; one that cannot be read fails the test.
    std::string Read(std::string_view name) const {
        std::ifstream file(NativePath(name), std::ios::binary);
        EXPECT_TRUE(file) << "could not read " << name;
        return {std::istreambuf_iterator<char>(file), {}};
    }
    bool Exists(std::string_view name) const { return fs::exists(NativePath(name)); }
    void MakeFolder(std::string_view name) const { fs::create_directories(NativePath(name)); }

private:
    fs::path NativePath(std::string_view name) const {
        return name.empty() ? folder_ : folder_ / std::u8string(name.begin(), name.end());
    }

    fs::path folder_ = fs::temp_directory_path();
};

}  // namespace testing_support
