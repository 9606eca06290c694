#include "run/step_selection.h"

#include <algorithm>
#include <numeric>

#include "config/switches.h"
#include "core/key_values.h"
#include "files/format.h"
#include "files/text.h"

namespace {

// "3" or "2-5", steps from 1 to `count`.
bool MarkRange(StringView range, std::vector<bool>& wanted) {
    range = text::Trim(range, text::kBlanks);
    const std::size_t dash = range.find(u'-');
    const auto first = key_values::Number(text::Trim(range.substr(0, dash), text::kBlanks));
    const auto last = dash == StringView::npos
                          ? first
                          : key_values::Number(text::Trim(range.substr(dash + 1), text::kBlanks));
    if (!first || !last || *first < 1 || *last < *first) return false;
    if (static_cast<std::size_t>(*last) > wanted.size()) return false;
    std::fill(wanted.begin() + (*first - 1), wanted.begin() + *last, true);
    return true;
}

bool MarkRanges(StringView ranges, std::vector<bool>& wanted) {
    for (;;) {
        const std::size_t comma = ranges.find(u',');
        if (!MarkRange(ranges.substr(0, comma), wanted)) return false;
        if (comma == StringView::npos) return true;
        ranges.remove_prefix(comma + 1);
    }
}

}  // namespace

bool SelectSteps(String& error, const Configuration& configuration,
                 std::vector<std::size_t>& steps) {
    const std::size_t count = configuration.StepCount();
    const String only = configuration.Text(Section::CommandLine, kOnlySwitch);
    const String from = configuration.Text(Section::CommandLine, kFromSwitch);
    if (!only.empty() && !from.empty()) {
        error = u"'-only' and '-from' exclude each other.";
        return false;
    }
    std::vector<bool> wanted(count, only.empty() && from.empty());
    const bool named = only.empty()
                           ? from.empty() || MarkRange(from + Format(u"-%u", count), wanted)
                           : MarkRanges(only, wanted);
    if (!named) {
        error = Format(u"'%s' names no steps of this job, which has %u.",
                       only.empty() ? from : only, count);
        return false;
    }
    steps.clear();
    for (std::size_t i = 0; i < count; ++i) {
        if (wanted[i]) steps.push_back(i);
    }
    return true;
}
