// The ODBC headers, which on Windows need windows.h before them. For .cpp files only.
#pragma once

#ifdef _WIN32
#include <windows.h>
#endif

#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

namespace platform {

// True where the narrow calls of drivers take UTF-8 rather than the characters of a code page.
#ifdef _WIN32
constexpr bool kNarrowOdbcTextIsUtf8 = false;
#else
constexpr bool kNarrowOdbcTextIsUtf8 = true;
#endif

}  // namespace platform
