#include "platform/system_error.h"

#include <windows.h>

#include "platform/windows/wide.h"

namespace platform {

ErrorRecord SystemError(std::uint32_t code) {
    if (code == 0) code = ::GetLastError();
    wchar_t* message = nullptr;
    const DWORD length = ::FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        nullptr, code, 0, reinterpret_cast<wchar_t*>(&message), 0, nullptr);
    StringView text = FromWide(message, length);
    if (text.ends_with(u"\r\n")) text.remove_suffix(2);
    ErrorRecord record{String(text), code};
    ::LocalFree(message);
    return record;
}

}  // namespace platform
