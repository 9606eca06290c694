#include <cstdlib>

#include "base/utf8.h"
#include "support/sqlite.h"

namespace testing_support {

String DriverPath(const String& path) { return path; }

bool SetDriverEnvironment(const char* name, const String& value) {
    return ::setenv(name, ToNativeBytes(value).c_str(), 1) == 0;
}

}  // namespace testing_support
