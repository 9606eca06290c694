#include "platform/clock.h"

#include <windows.h>

namespace platform {
namespace {

LocalTime TimeOf(const SYSTEMTIME& time) {
    return {time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond};
}

class WindowsClock final : public Clock {
public:
    LocalTime Now() const override {
        SYSTEMTIME now{};
        ::GetLocalTime(&now);
        return TimeOf(now);
    }

    LocalTime UtcNow() const override {
        SYSTEMTIME now{};
        ::GetSystemTime(&now);
        return TimeOf(now);
    }

    std::uint64_t TickMs() const override { return ::GetTickCount64(); }
};

}  // namespace

const Clock& SystemClock() {
    static const WindowsClock clock;
    return clock;
}

}  // namespace platform
