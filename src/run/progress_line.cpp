#include "run/progress_line.h"

#include "files/format.h"
#include "platform/console.h"

namespace {

// Digits in groups of three.
String Grouped(std::uint64_t number) {
    const String digits = Format(u"%I64u", number);
    String grouped;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i != 0 && (digits.size() - i) % 3 == 0) grouped += u',';
        grouped += digits[i];
    }
    return grouped;
}

}  // namespace

ProgressLine::ProgressLine(std::size_t step, const platform::Clock& clock)
    : step_(step), clock_(clock), start_ms_(clock.TickMs()), shown_ms_(start_ms_) {}

void ProgressLine::Tell(std::uint64_t rows, std::uint64_t bytes, std::optional<double> share) {
    const std::uint64_t now_ms = clock_.TickMs();
    if (now_ms - shown_ms_ < kMsBetweenLines) return;
    shown_ms_ = now_ms;
    String line = Format(u"Step %u: %s rows", step_ + 1, Grouped(rows));
    if (bytes != 0) line += Format(u", %.1f MB", static_cast<double>(bytes) / 1'000'000);
    line += Format(u", %s rows/s", Grouped(rows * 1000 / (now_ms - start_ms_)));
    if (share) line += Format(u", %.0f %%", *share * 100);
    const std::size_t width = line.size();
    if (width < shown_width_) line.append(shown_width_ - width, u' ');
    shown_width_ = width;
    line.insert(line.begin(), u'\r');
    platform::WriteErrorText(line);
}

void ProgressLine::Clear() {
    if (shown_width_ == 0) return;
    String blank(shown_width_ + 2, u' ');
    blank.front() = blank.back() = u'\r';
    platform::WriteErrorText(blank);
    shown_width_ = 0;
}
