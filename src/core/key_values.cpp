#include "core/key_values.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

#include "files/text.h"

namespace key_values {
namespace {

constexpr StringView kAnyNumber = u"nnnn";

bool IsDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

bool AllDigits(StringView value) {
    return !value.empty() && std::all_of(value.begin(), value.end(), IsDigit);
}

bool Equal(StringView left, StringView right, bool any_case) {
    return any_case ? text::EqualsIgnoringCase(left, right) : left == right;
}

bool Matches(StringView word, StringView value, bool any_case) {
    if (!word.ends_with(kAnyNumber)) return Equal(word, value, any_case);
    constexpr std::size_t kMostDigits = 5;
    const std::size_t letters = word.size() - kAnyNumber.size();
    return value.size() > letters && value.size() <= letters + kMostDigits &&
           Equal(word.substr(0, letters), value.substr(0, letters), any_case) &&
           AllDigits(value.substr(letters));
}

// The pieces of a text between separators.
std::vector<StringView> Pieces(StringView text, char16_t separator) {
    std::vector<StringView> pieces;
    for (;;) {
        const std::size_t end = text.find(separator);
        pieces.push_back(text.substr(0, end));
        if (end == StringView::npos) return pieces;
        text.remove_prefix(end + 1);
    }
}

}  // namespace

std::optional<bool> Flag(StringView value) {
    static constexpr std::pair<StringView, bool> kWords[] = {
        {u"1", true},  {u"true", true},   {u"yes", true}, {u"on", true},
        {u"0", false}, {u"false", false}, {u"no", false}, {u"off", false},
    };
    for (const auto& [word, meaning] : kWords) {
        if (text::EqualsIgnoringCase(value, word)) return meaning;
    }
    return std::nullopt;
}

std::optional<std::int64_t> Number(StringView value) {
    if (!AllDigits(value)) return std::nullopt;
    // The greatest number also stands for all beyond it.
    const std::int64_t number = text::ToInteger(value);
    if (number == std::numeric_limits<std::int64_t>::max()) return std::nullopt;
    return number;
}

std::optional<std::uint64_t> Size(StringView value) {
    static constexpr StringView kUnits = u"kmg";
    unsigned shift = 0;
    if (!value.empty()) {
        const std::size_t unit = kUnits.find(text::Lowered(value.substr(value.size() - 1)));
        if (unit != StringView::npos) {
            shift = 10 * (static_cast<unsigned>(unit) + 1);
            value.remove_suffix(1);
        }
    }
    const std::optional<std::int64_t> number = Number(value);
    if (!number || *number > (std::numeric_limits<std::int64_t>::max() >> shift)) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(*number) << shift;
}

std::optional<std::vector<std::size_t>> Numbers(StringView value) {
    std::vector<std::size_t> numbers;
    for (const StringView piece : Pieces(value, u',')) {
        const std::optional<std::int64_t> number = Number(text::Trim(piece, text::kBlanks));
        if (!number || *number == 0) return std::nullopt;
        numbers.push_back(static_cast<std::size_t>(*number));
    }
    return numbers;
}

std::vector<StringView> Words(const KeySpec& spec) {
    return spec.words.empty() ? std::vector<StringView>{} : Pieces(spec.words, u' ');
}

std::optional<std::size_t> Word(const KeySpec& spec, StringView value, bool strict) {
    const bool any_case = strict || spec.any_case;
    std::vector<StringView> words = Words(spec);
    if (!strict && spec.loose_words != 0) words.resize(spec.loose_words);
    const auto found = std::find_if(words.begin(), words.end(), [&](StringView word) {
        return Matches(word, value, any_case);
    });
    if (found == words.end()) return std::nullopt;
    return static_cast<std::size_t>(std::distance(words.begin(), found));
}

bool IsValid(const KeySpec& spec, StringView value) {
    if (spec.kind == KeyKind::Text || spec.kind == KeyKind::Type || value.empty()) return true;
    switch (spec.kind) {
        case KeyKind::Flag:
            return Flag(value).has_value();
        case KeyKind::Number:
            return Number(value).has_value();
        case KeyKind::Size:
            return Size(value).has_value();
        case KeyKind::Column:
            return Word(spec, value, true).has_value() ||
                   Number(text::Trim(value, text::kBlanks)).value_or(0) != 0;
        case KeyKind::Numbers:
        case KeyKind::Columns:
            return Numbers(value).has_value();
        default:
            return Word(spec, value, true).has_value();
    }
}

}  // namespace key_values
