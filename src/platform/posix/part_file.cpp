#include "platform/posix/part_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <utility>

namespace platform {

namespace fs = std::filesystem;

PartFile::~PartFile() {
    if (name_.empty()) return;
    const int reason = errno;  // what the owner is about to report
    ::unlink(name_.c_str());
    errno = reason;
}

Descriptor PartFile::Create() {
    fs::path name;
    int number = -1;
    do {
        name = NextName();
        number = OpenDescriptor(name.native(), O_WRONLY | O_CREAT | O_EXCL, 0600);
    } while (number < 0 && errno == EEXIST);
    if (number >= 0) name_ = std::move(name);
    return Descriptor(number);
}

bool PartFile::CreateLink(const fs::path& link) {
    std::error_code code;
    const fs::path leads_to = fs::read_symlink(link, code);
    if (code) {
        errno = code.value();
        return false;
    }
    fs::path name;
    int result = -1;
    do {
        name = NextName();
        result = ::symlink(leads_to.c_str(), name.c_str());
    } while (result != 0 && errno == EEXIST);
    if (result == 0) name_ = std::move(name);
    return result == 0;
}

bool PartFile::PutInPlace() {
    if (::rename(name_.c_str(), target_.c_str()) != 0) return false;
    name_.clear();
    return true;
}

// Short, as one made from the target's name could be too long for the file system. A name may be
// taken: by what a killed process left behind, or by the same process number on another machine.
fs::path PartFile::NextName() {
    const std::string number = std::to_string(::getpid()) + "-" + std::to_string(tried_++);
    return target_.parent_path() / (".quillon-" + number + ".part");
}

}  // namespace platform
