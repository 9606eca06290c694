#include "check/nearest_name.h"

#include <algorithm>
#include <limits>

#include "files/text.h"

namespace {

// Costs are counted in quarters of a letter, so that letter case can cost less than a letter.
constexpr std::size_t kLetter = 4;
constexpr std::size_t kCase = 1;

// Shorter texts begin too many names.
constexpr std::size_t kShortestBeginning = 3;

std::size_t CostOf(char16_t left, char16_t right) {
    if (left == right) return 0;
    return text::EqualsIgnoringCase({&left, 1}, {&right, 1}) ? kCase : kLetter;
}

std::size_t Distance(StringView left, StringView right) {
    // Rows of the table of distances between the beginnings of both texts.
    std::vector<std::size_t> before_last;
    std::vector<std::size_t> last(right.size() + 1);
    for (std::size_t j = 0; j <= right.size(); ++j) last[j] = j * kLetter;
    for (std::size_t i = 1; i <= left.size(); ++i) {
        std::vector<std::size_t> row(right.size() + 1);
        row[0] = i * kLetter;
        for (std::size_t j = 1; j <= right.size(); ++j) {
            row[j] = std::min({last[j] + kLetter, row[j - 1] + kLetter,
                               last[j - 1] + CostOf(left[i - 1], right[j - 1])});
            const bool swapped =
                i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1];
            if (swapped) row[j] = std::min(row[j], before_last[j - 2] + kLetter);
        }
        before_last = std::move(last);
        last = std::move(row);
    }
    return last.back();
}

// How many letters the longer one has; the "-" that all switches begin with is none.
std::size_t LettersOf(StringView left, StringView right) {
    const bool switches = left.starts_with(u'-') && right.starts_with(u'-');
    return std::max(left.size(), right.size()) - (switches ? 1 : 0);
}

}  // namespace

// At most a third of the letters may be wrong, or one; but never all of them.
StringView NearestName(StringView name, const std::vector<StringView>& candidates) {
    StringView nearest;
    std::size_t least = std::numeric_limits<std::size_t>::max();
    for (const StringView candidate : candidates) {
        const std::size_t distance = Distance(name, candidate);
        const std::size_t letters = LettersOf(name, candidate) * kLetter;
        const std::size_t most =
            std::max(std::max(name.size(), candidate.size()) * kLetter / 3, kLetter);
        if (distance > most || distance >= letters || distance >= least) continue;
        least = distance;
        nearest = candidate;
    }
    if (!nearest.empty() || name.size() < kShortestBeginning) return nearest;
    const auto begun =
        std::find_if(candidates.begin(), candidates.end(), [&](StringView candidate) {
            return text::EqualsIgnoringCase(candidate.substr(0, name.size()), name);
        });
    return begun == candidates.end() ? StringView() : *begun;
}
