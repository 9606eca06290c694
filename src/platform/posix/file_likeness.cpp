#include "platform/posix/file_likeness.h"

#include <unistd.h>

namespace platform {

bool IsSameFile(const struct stat& left, const struct stat& right) {
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

bool TakeOwner(int file, const struct stat& old) {
    struct stat own {};
    if (::fstat(file, &own) != 0) return false;
    const bool same = own.st_uid == old.st_uid && own.st_gid == old.st_gid;
    return same || ::fchown(file, old.st_uid, old.st_gid) == 0;
}

bool TakeRights(int file, const struct stat& old) {
    constexpr mode_t kRights = 07777;
    return ::fchmod(file, old.st_mode & kRights) == 0;
}

}  // namespace platform
