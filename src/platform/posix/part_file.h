// A file in the making beside the one that it is to replace.
#pragma once

#include <filesystem>

#include "platform/posix/descriptor.h"

namespace platform {

// A new file or link under a name of its own, which takes the place of another one in a single step
// when it is whole. Removed unless it got there. Where a call fails, errno tells why.
class PartFile {
public:
    // target: where it is to be; its folder is the one that the part is made in
    explicit PartFile(std::filesystem::path target) : target_(std::move(target)) {}
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;
    ~PartFile();

    // Makes an empty file that nobody else may read. Returns -1 when that fails.
    Descriptor Create();
    // Makes a link that leads where `link` does.
    bool CreateLink(const std::filesystem::path& link);

    // Gives it the target's name, in place of what is there.
    bool PutInPlace();

private:
    std::filesystem::path NextName();

    std::filesystem::path target_;
    std::filesystem::path name_;  // empty without a file under it
    unsigned tried_ = 0;
};

}  // namespace platform
