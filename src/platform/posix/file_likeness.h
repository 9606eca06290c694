// What a file has in common with the one that it replaces.
#pragma once

#include <sys/stat.h>

namespace platform {

// True for two looks at one file, by whatever names.
bool IsSameFile(const struct stat& left, const struct stat& right);

// Gives a file the owner and the group of another one; false, with errno, when the system refuses.
bool TakeOwner(int file, const struct stat& old);
// The same of the access rights; last, as a change of owner takes rights.
bool TakeRights(int file, const struct stat& old);

}  // namespace platform
