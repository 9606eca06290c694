#pragma once

#include <gtest/gtest.h>

#include "base/strings.h"
#include "platform/environment.h"

namespace testing_support {

// The connect string that postgres.sh printed, from the environment; empty without a server.
inline String PostgresConnectString() {
    return platform::EnvironmentVariable(u"QUILLON_TEST_POSTGRES");
}

}  // namespace testing_support

// Leaves a test out where there is no server to run it on.
#define SKIP_WITHOUT_POSTGRES()                                                            \
    if (testing_support::PostgresConnectString().empty())                                  \
    GTEST_SKIP() << "no PostgreSQL: QUILLON_TEST_POSTGRES is not set to a connect string " \
                    "(tests/servers/postgres.sh start DIR prints one)"
