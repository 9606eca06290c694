#pragma once

#include <string>
#include <string_view>

#include "base/strings.h"
#include "support/scratch.h"

namespace testing_support {

// The SQLite database in the file `name` of a scratch folder, as an ODBC connect string. The file
// comes into being with the first statement.
String SqliteConnectString(const ScratchFolder& folder, std::string_view name);

// Executes a statement in that database; one that fails fails the test.
void RunInSqlite(const ScratchFolder& folder, std::string_view name, const String& statement);

// How an ODBC driver of the machine sees `path`: under Wine drivers know the host's names.
String DriverPath(const String& path);

// Sets an environment variable as the driver manager and the drivers see it. False where a process
// cannot settle that for itself.
bool SetDriverEnvironment(const char* name, const String& value);

}  // namespace testing_support
