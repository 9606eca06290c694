#pragma once

#include "base/strings.h"

namespace Quillon {
class Logger;
}

// What a step says that memory ran out in.
inline constexpr StringView kOutOfMemory = u"Out of memory.";

// Reports a failure: a message that is not empty replaces `error`, which is then written through
// `logger` unless there is nothing to write. Always false, so that a caller can return it.
bool ReportError(String& error, Quillon::Logger& logger, StringView message);
