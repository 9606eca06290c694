// Copies of single files, each of which is there whole or not at all.
#pragma once

#include <filesystem>

#include "base/error_record.h"

namespace platform {

// Copies a regular file, its time of writing included, over what is there under the new name; a
// link there is followed. A new file gets the rights of the source, one that was there keeps its
// own. See CopyOneFile for what holds after a failure.
bool CopyRegularFile(ErrorRecord& error, const std::filesystem::path& from,
                     const std::filesystem::path& to);

// Moves a regular file or a link to another file system: by a copy that replaces what is there when
// it is whole, and only then the source is removed. When that fails, both are there.
bool MoveByCopy(ErrorRecord& error, const std::filesystem::path& from,
                const std::filesystem::path& to);

}  // namespace platform
