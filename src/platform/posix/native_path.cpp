#include "platform/posix/native_path.h"

#include <cerrno>

#include "base/utf8.h"
#include "platform/system_error.h"

namespace platform {

std::optional<std::string> NativePath(ErrorRecord& error, const String& name) {
    if (!HoldsZero(name)) return ToNativeBytes(name);
    error = SystemError(EINVAL);
    return std::nullopt;
}

}  // namespace platform
