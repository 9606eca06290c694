#include <windows.h>

#include "base/utf8.h"
#include "support/sqlite.h"

String testing_support::DriverPath(const String& path) {
    using HostName = char*(__cdecl*)(const wchar_t*);
    const FARPROC wine =
        ::GetProcAddress(::GetModuleHandleW(L"kernel32"), "wine_get_unix_file_name");
    if (!wine) return path;  // a real Windows
    const auto host_name = reinterpret_cast<HostName>(reinterpret_cast<void*>(wine));
    return FromNativeBytes(host_name(reinterpret_cast<const wchar_t*>(path.c_str())));
}

bool testing_support::SetDriverEnvironment(const char*, const String&) { return false; }
