#pragma once

#include <cstdint>
#include <optional>

#include "base/strings.h"
#include "platform/clock.h"

// A line on standard error that tells how far a step has come, rewritten while rows move:
//
//     Step 2: 120,000 rows, 12.3 MB, 45,000 rows/s, 57 %
//
// It is taken away when the step ends or something else is told.
class ProgressLine {
public:
    // clock: outlives the line.
    ProgressLine(std::size_t step, const platform::Clock& clock);
    ~ProgressLine() { Clear(); }
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    // Told after each row; looks at the clock now and then, and shows the line a few times a
    // second.
    // bytes: written so far
    // share: how much of the source has been read, from 0 to 1, where its size is known
    void Tell(std::uint64_t rows, std::uint64_t bytes, std::optional<double> share);
    // True when the next Tell may show something, so that its arguments are worth finding out.
    bool IsDue(std::uint64_t rows) const { return rows % kRowsBetweenLooks == 0; }
    void Clear();

private:
    static constexpr std::uint64_t kRowsBetweenLooks = 256;
    static constexpr std::uint64_t kMsBetweenLines = 250;

    const std::size_t step_;
    const platform::Clock& clock_;
    const std::uint64_t start_ms_;
    std::uint64_t shown_ms_;
    std::size_t shown_width_ = 0;
};
