#pragma once

#include <cstdint>

#include "base/error_record.h"
#include "base/strings.h"

namespace platform {

// The system's message for an error code, in the user's language, without a trailing line end.
// code: GetLastError() on Windows, errno elsewhere; 0 means the calling thread's last error.
ErrorRecord SystemError(std::uint32_t code = 0);

}  // namespace platform
