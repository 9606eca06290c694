#include "files/number_text.h"

#include <algorithm>

namespace {

bool IsDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

std::size_t CountDigits(StringView text) {
    const auto end = std::find_if_not(text.begin(), text.end(), IsDigit);
    return static_cast<std::size_t>(end - text.begin());
}

// "e5", "E-07" and the like, or nothing.
bool IsExponent(StringView text) {
    if (text.empty()) return true;
    if (text.front() != u'e' && text.front() != u'E') return false;
    text.remove_prefix(1);
    if (text.starts_with(u'+') || text.starts_with(u'-')) text.remove_prefix(1);
    return !text.empty() && CountDigits(text) == text.size();
}

}  // namespace

bool AppendNumber(String& out, StringView text) {
    const std::size_t sign = text.starts_with(u'-') ? 1 : 0;
    StringView rest = text.substr(sign);
    const std::size_t whole = CountDigits(rest);
    if (whole > 1 && rest.front() == u'0') return false;
    rest.remove_prefix(whole);
    if (!rest.starts_with(u'.')) {
        if (whole == 0 || !IsExponent(rest)) return false;
        out += text;
        return true;
    }
    rest.remove_prefix(1);
    const std::size_t behind = CountDigits(rest);
    if (whole + behind == 0 || !IsExponent(rest.substr(behind))) return false;
    out += text.substr(0, sign + whole);
    if (whole == 0) out += u'0';
    out += u'.';
    out += rest.substr(0, behind);
    if (behind == 0) out += u'0';
    out += rest.substr(behind);
    return true;
}

std::size_t SignificantDigits(StringView number) {
    std::size_t digits = 0;
    std::size_t zeros = 0;  // behind the latest digit that counts
    for (const char16_t unit : number.substr(0, number.find_first_of(u"eE"))) {
        if (!IsDigit(unit)) continue;
        if (unit == u'0') {
            zeros += digits == 0 ? 0 : 1;
        } else {
            digits += zeros + 1;
            zeros = 0;
        }
    }
    return digits;
}
