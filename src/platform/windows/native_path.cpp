#include "platform/windows/native_path.h"

#include <windows.h>

#include "platform/system_error.h"
#include "platform/windows/wide.h"

namespace platform {

const wchar_t* NativePath(ErrorRecord& error, const String& name) {
    if (name.find(u'\0') == String::npos) return AsWide(name);
    error = SystemError(ERROR_INVALID_NAME);
    return nullptr;
}

}  // namespace platform
