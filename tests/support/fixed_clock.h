#pragma once

#include "platform/clock.h"

namespace testing_support {

// A clock that stands still.
class FixedClock final : public platform::Clock {
public:
    explicit FixedClock(const platform::LocalTime& now) : now_(now) {}
    platform::LocalTime Now() const override { return now_; }
    std::uint64_t TickMs() const override { return 0; }

private:
    platform::LocalTime now_;
};

}  // namespace testing_support
