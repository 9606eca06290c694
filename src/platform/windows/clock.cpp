#include "platform/clock.h"

#include <windows.h>

namespace platform {
namespace {

class WindowsClock final : public Clock {
public:
    LocalTime Now() const override {
        SYSTEMTIME now{};
        ::GetLocalTime(&now);
        return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond};
    }

    std::uint64_t TickMs() const override { return ::GetTickCount64(); }
};

}  // namespace

const Clock& SystemClock() {
    static const WindowsClock clock;
    return clock;
}

}  // namespace platform
