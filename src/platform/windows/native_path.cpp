#include "platform/windows/native_path.h"

#include <windows.h>

#include "platform/system_error.h"
#include "platform/windows/wide.h"

namespace platform {

const wchar_t* NativePath(ErrorRecord& error, const String& name) {
    if (!HoldsZero(name)) return AsWide(name);
    error = SystemError(ERROR_INVALID_NAME);
    return nullptr;
}

}  // namespace platform
