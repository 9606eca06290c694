#pragma once

#include <gtest/gtest.h>

#include "platform/environment.h"

namespace testing_support {

// The connect string that postgres.sh printed, from the environment; empty without a server.
inline String PostgresConnectString() {
    return platform::EnvironmentVariable(u"QUILLON_TEST_POSTGRES");
}

}  // namespace testing_support

// Leaves a test out where there is no server to run it on.
#define SKIP_WITHOUT_POSTGRES()                           \
    if (testing_support::PostgresConnectString().empty()) \
    GTEST_SKIP() << "QUILLON_TEST_POSTGRES holds no connect string, see tests/servers/postgres.sh"
