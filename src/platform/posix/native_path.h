// Names of files and folders as the system's calls take them.
#pragma once

#include <optional>
#include <string>

#include "base/error_record.h"
#include "base/strings.h"

namespace platform {

// A name that the system would take to end at its zero character.
inline bool HoldsZero(const String& name) { return name.find(u'\0') != String::npos; }

// The bytes of a name. Nothing for a name with a zero character inside, where the system would take
// it to end and so mean another file; `error` then holds the text and code of EINVAL.
std::optional<std::string> NativePath(ErrorRecord& error, const String& name);

}  // namespace platform
