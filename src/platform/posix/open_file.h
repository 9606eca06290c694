// Descriptors of files that are open for writing.
#pragma once

#include <memory>
#include <string>

#include "platform/file_system.h"
#include "platform/posix/descriptor.h"

namespace platform {

// Keeps other writers of a file away, who would write over each other. False, with EWOULDBLOCK in
// errno, when one is there already.
bool LockForWriting(int descriptor);

// Opens a file and keeps other writers of a regular one away: once more where it has been replaced
// between the two, as what is written then would have no name. -1, with errno set, on failure.
Descriptor OpenLocked(const std::string& name, int flags);

// Whether `name` leads to the open file. Unknown, with errno, where the system does not tell.
enum class Named { Yes, No, Unknown };
Named IsNamed(int descriptor, const std::string& name);

// The regular file behind a descriptor that is open for reading and writing.
std::unique_ptr<OutputFile> OutputFileOn(Descriptor descriptor);

}  // namespace platform
