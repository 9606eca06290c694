#include "files/text.h"

#include <algorithm>
#include <limits>

namespace text {
namespace {

bool IsDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

char16_t Lower(char16_t unit) {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
}

}  // namespace

StringView Trim(StringView value, StringView characters) {
    const std::size_t first = value.find_first_not_of(characters);
    if (first == StringView::npos) return {};
    return value.substr(first, value.find_last_not_of(characters) - first + 1);
}

StringView StripQuotes(StringView value) {
    const bool quoted = value.size() >= 2 && value.front() == u'"' && value.back() == u'"';
    return quoted ? value.substr(1, value.size() - 2) : value;
}

bool EqualsIgnoringCase(StringView left, StringView right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char16_t a, char16_t b) { return Lower(a) == Lower(b); });
}

String Lowered(StringView value) {
    String lowered(value);
    std::transform(lowered.begin(), lowered.end(), lowered.begin(), Lower);
    return lowered;
}

void ReplaceAll(String& value, StringView from, StringView to) {
    if (from.empty()) return;
    std::size_t found = value.find(from);
    if (found == String::npos) return;
    // Each character moves once, however many occurrences there are.
    String result;
    std::size_t kept = 0;  // where the text not yet taken over begins
    for (; found != String::npos; found = value.find(from, kept)) {
        result.append(value, kept, found - kept).append(to);
        kept = found + from.size();
    }
    value = result.append(value, kept);
}

std::int64_t ToInteger(StringView value) {
    using Limits = std::numeric_limits<std::int64_t>;
    const std::size_t start = std::min(value.find_first_not_of(kBlanksAndLineEnds), value.size());
    value.remove_prefix(start);
    const bool negative = value.starts_with(u'-');
    if (negative || value.starts_with(u'+')) value.remove_prefix(1);
    std::int64_t number = 0;  // counted downwards: the range reaches further there
    for (const char16_t unit : value) {
        if (!IsDigit(unit)) break;
        const std::int64_t digit = unit - u'0';
        if (number < (Limits::min() + digit) / 10) return negative ? Limits::min() : Limits::max();
        number = number * 10 - digit;
    }
    if (negative) return number;
    return number == Limits::min() ? Limits::max() : -number;
}

bool IsPlainNumber(StringView value) {
    if (value.empty() || value.front() == u'0' || !IsDigit(value.front())) return false;
    const auto other = std::find_if_not(value.begin(), value.end(), IsDigit);
    if (other == value.end()) return true;
    return *other == u'.' && std::all_of(other + 1, value.end(), IsDigit);
}

String Widen(std::string_view bytes) {
    String wide(bytes.size(), u'\0');
    std::transform(bytes.begin(), bytes.end(), wide.begin(), [](char byte) {
        return static_cast<char16_t>(static_cast<unsigned char>(byte));
    });
    return wide;
}

}  // namespace text
