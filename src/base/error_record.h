#pragma once

#include <cstdint>

#include "base/strings.h"

// What went wrong in an operation that meets the operating system.
struct ErrorRecord {
    String text;             // message for the user; empty when the operation defines none
    std::uint32_t code = 0;  // the system's error code (GetLastError, errno), 0 without one
};
