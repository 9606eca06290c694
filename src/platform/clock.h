#pragma once

#include <cstdint>

namespace platform {

// Local time of day, to the second.
struct LocalTime {
    int year;    // four digits
    int month;   // 1 to 12
    int day;     // 1 to 31
    int hour;    // 0 to 23
    int minute;  // 0 to 59
    int second;  // 0 to 60
};

class Clock {
public:
    virtual ~Clock() = default;
    virtual LocalTime Now() const = 0;
    // The same moment in UTC. Clocks of tests know one time zone only.
    virtual LocalTime UtcNow() const { return Now(); }
    // Milliseconds since some fixed moment; never goes back.
    virtual std::uint64_t TickMs() const = 0;
};

// The machine's clock.
const Clock& SystemClock();

}  // namespace platform
