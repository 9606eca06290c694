#include "platform/memory_guard.h"

#include "platform/console.h"

namespace platform {

void TellOutOfMemory() { WriteErrorBytes("Out of memory.\n"); }

}  // namespace platform
