#include <windows.h>

#include "base/utf8.h"
#include "support/sqlite.h"

namespace testing_support {

String DriverPath(const String& path) {
    using HostName = char*(__cdecl*)(const wchar_t*);
    const FARPROC found =
        ::GetProcAddress(::GetModuleHandleW(L"kernel32"), "wine_get_unix_file_name");
    if (!found) return path;  // a real Windows
    char* const name = reinterpret_cast<HostName>(reinterpret_cast<void*>(found))(
        reinterpret_cast<const wchar_t*>(path.c_str()));
    if (!name) return path;
    const String result = FromNativeBytes(name);
    ::HeapFree(::GetProcessHeap(), 0, name);
    return result;
}

bool SetDriverEnvironment(const char*, const String&) { return false; }

}  // namespace testing_support
