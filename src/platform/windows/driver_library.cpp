#include "platform/driver_library.h"

#include <windows.h>

#include <array>
#include <cwchar>
#include <vector>

#include "platform/environment.h"
#include "platform/windows/wide.h"

namespace platform {
namespace {

// A text value of a key of the machine, however long; empty when it is not there.
String MachineValue(const String& key, const String& name) {
    DWORD bytes = 0;
    const auto read = [&](void* data) {
        return ::RegGetValueW(HKEY_LOCAL_MACHINE, AsWide(key), AsWide(name),
                              RRF_RT_REG_SZ | RRF_RT_REG_EXPAND_SZ | RRF_NOEXPAND, nullptr, data,
                              &bytes) == ERROR_SUCCESS;
    };
    if (!read(nullptr)) return {};
    String value(bytes / sizeof(char16_t), u'\0');
    if (!read(value.data())) return {};
    return value.c_str();  // without the terminating zero
}

}  // namespace

String DriverLibrary(const String& name, const String& /*attributes*/) {
    String library = MachineValue(u"SOFTWARE\\ODBC\\ODBCINST.INI\\" + name, u"Driver");
    constexpr StringView kPrefix = u"%WINDIR%";
    static const String kWindowsFolder = EnvironmentVariable(u"WINDIR");
    if (library.starts_with(kPrefix)) library.replace(0, kPrefix.size(), kWindowsFolder);
    return library;
}

String DriverLibraryVersion(const String& library) {
    DWORD ignored = 0;
    std::vector<std::byte> resource(::GetFileVersionInfoSizeW(AsWide(library), &ignored));
    VS_FIXEDFILEINFO* version = nullptr;
    UINT length = 0;
    if (resource.empty() ||
        !::GetFileVersionInfoW(AsWide(library), 0, static_cast<DWORD>(resource.size()),
                               resource.data()) ||
        !::VerQueryValueW(resource.data(), L"\\", reinterpret_cast<void**>(&version), &length) ||
        length < sizeof(*version)) {
        return {};
    }
    std::array<wchar_t, 48> text{};
    const int size =
        std::swprintf(text.data(), text.size(), L"%d.%02d.%02d.%02d",
                      HIWORD(version->dwFileVersionMS), LOWORD(version->dwFileVersionMS),
                      HIWORD(version->dwFileVersionLS), LOWORD(version->dwFileVersionLS));
    return String(FromWide(text.data(), static_cast<std::size_t>(size)));
}

bool DriverTakesWideText(const String& /*name*/) { return true; }

bool LibraryTakesWideText(const String& /*library*/) { return true; }

}  // namespace platform
