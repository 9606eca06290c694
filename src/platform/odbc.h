// The ODBC headers, which on Windows need windows.h before them. For .cpp files only.
#pragma once

#ifdef _WIN32
#include <windows.h>
#endif

#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>
