// The libraries of ODBC drivers, as the system's driver manager keeps them.
#pragma once

#include "base/strings.h"

namespace platform {

// The library of an installed ODBC driver, as it was registered; empty when it is not. On Windows a
// path that begins with "%WINDIR%", letter for letter, has the value of WINDIR in its place.
// name:       the driver's name
// attributes: its attributes as the driver manager lists them, "name=value" joined with ";"
String DriverLibrary(const String& name, const String& attributes);

// The version of a driver's library. On Windows that of its version resource, "%d.%02d.%02d.%02d";
// on Linux what the real name of the file says: 1.2.3 of libfoo.so.1.2.3, 0.9998 of
// libfoo-0.9998.so. Empty where there is none.
String DriverLibraryVersion(const String& library);

// False for a loaded driver without wide calls, which gets all text through the driver manager's
// conversion. True on Windows, and where the driver cannot be found.
// name: the driver's file name, as it tells it itself (SQL_DRIVER_NAME).
bool DriverTakesWideText(const String& name);

// The same of a driver that is not loaded yet, which it then is.
// library: where it is, as its entry tells it.
bool LibraryTakesWideText(const String& library);

}  // namespace platform
