#include "platform/clock.h"

#include <time.h>

namespace platform {
namespace {

LocalTime TimeOf(const tm& parts) {
    return {parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday,
            parts.tm_hour,        parts.tm_min,     parts.tm_sec};
}

class PosixClock final : public Clock {
public:
    LocalTime Now() const override {
        const time_t now = ::time(nullptr);
        tm parts{};
        ::localtime_r(&now, &parts);
        return TimeOf(parts);
    }

    LocalTime UtcNow() const override {
        const time_t now = ::time(nullptr);
        tm parts{};
        ::gmtime_r(&now, &parts);
        return TimeOf(parts);
    }

    std::uint64_t TickMs() const override {
        timespec now{};
        ::clock_gettime(CLOCK_MONOTONIC, &now);
        return static_cast<std::uint64_t>(now.tv_sec) * 1000 +
               static_cast<std::uint64_t>(now.tv_nsec) / 1'000'000;
    }
};

}  // namespace

const Clock& SystemClock() {
    static const PosixClock clock;
    return clock;
}

}  // namespace platform
