#pragma once

#include "platform/environment.h"
#include "support/scratch.h"

namespace testing_support {

// How an ODBC driver of the machine sees `path`: under Wine drivers know the host's names.
String DriverPath(const String& path);

// Sets an environment variable as the drivers see it. False where a process cannot settle that for
// itself.
bool SetDriverEnvironment(const char* name, const String& value);

// The SQLite database in the file `name` of a scratch folder, as an ODBC connect string. The file
// comes into being with the first statement.
inline String SqliteConnectString(const ScratchFolder& folder, std::string_view name) {
    platform::PrepareProcess();  // the driver manager converts text by the locale that this settles
    return u"Driver=SQLite3;Database=" + DriverPath(folder.Path(name)) + u";";
}

}  // namespace testing_support
