// Handles of files that are open for writing.
#pragma once

#include <memory>

#include "platform/file_system.h"
#include "platform/windows/handle.h"

namespace platform {

// The file behind a handle that is open for reading and writing.
std::unique_ptr<OutputFile> OutputFileOn(Handle handle);

// True for the name of a pipe or a device (NUL, CON, COM1), in whichever folder. Files can be named
// in the same way: \\.\C:\file.
bool NamesDevice(const String& name);

}  // namespace platform
