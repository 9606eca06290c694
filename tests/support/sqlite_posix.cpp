#include <cstdlib>

#include "base/utf8.h"
#include "support/sqlite.h"

String testing_support::DriverPath(const String& path) { return path; }

bool testing_support::SetDriverEnvironment(const char* name, const String& value) {
    return ::setenv(name, ToUtf8(value).c_str(), 1) == 0;
}
