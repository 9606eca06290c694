#include "platform/driver_library.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "base/utf8.h"
#include "platform/environment.h"

namespace {

constexpr const wchar_t* kKey = L"SOFTWARE\\ODBC\\ODBCINST.INI\\Quillon test driver";

void Register(const wchar_t* library) {
    const auto bytes = static_cast<DWORD>((wcslen(library) + 1) * sizeof(wchar_t));
    ASSERT_EQ(::RegSetKeyValueW(HKEY_LOCAL_MACHINE, kKey, L"Driver", REG_SZ, library, bytes),
              ERROR_SUCCESS);
}

TEST(DriverLibrary, StandsInTheRegistry) {
    const String name = u"Quillon test driver";
    EXPECT_EQ(platform::DriverLibrary(name, u"Driver=x"), u"");
    Register(L"%WINDIR%\\system32\\kernel32.dll");
    const String library = platform::DriverLibrary(name, u"");
    Register(L"%windir%\\x.dll");
    const String other = platform::DriverLibrary(name, u"");
    ::RegDeleteKeyW(HKEY_LOCAL_MACHINE, kKey);
    EXPECT_EQ(library, platform::EnvironmentVariable(u"WINDIR") + u"\\system32\\kernel32.dll");
    EXPECT_EQ(other, u"%windir%\\x.dll");
    // 6.01.7601.24000, say: whatever the system's version is, its first number has one or two
    // digits.
    const String version = platform::DriverLibraryVersion(library);
    EXPECT_TRUE(version.find(u'.') <= 2 && version.size() >= 10) << ToUtf8(version);
    EXPECT_EQ(platform::DriverLibraryVersion(other), u"");
}

}  // namespace
