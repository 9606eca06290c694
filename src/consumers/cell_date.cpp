#include "consumers/cell_date.h"

#include <array>

namespace DataConsumers {
namespace {

bool IsDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

// Whether `text` has the shape of `pattern`, where "9" stands for any digit.
bool HasShape(StringView text, StringView pattern) {
    if (text.size() != pattern.size()) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (pattern[i] == u'9' ? !IsDigit(text[i]) : text[i] != pattern[i]) return false;
    }
    return true;
}

int NumberAt(StringView text, std::size_t at, std::size_t digits) {
    int number = 0;
    for (const char16_t unit : text.substr(at, digits)) number = number * 10 + (unit - u'0');
    return number;
}

int DaysIn(int year, int month) {
    constexpr std::array<int, 12> kDays{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return kDays[static_cast<std::size_t>(month) - 1] + (month == 2 && leap ? 1 : 0);
}

bool IsDate(StringView text) {
    if (!HasShape(text, u"9999-99-99")) return false;
    const int year = NumberAt(text, 0, 4);
    const int month = NumberAt(text, 5, 2);
    const int day = NumberAt(text, 8, 2);
    return year > 1900 && month >= 1 && month <= 12 && day >= 1 && day <= DaysIn(year, month);
}

bool IsTime(StringView text) {
    return HasShape(text, u"99:99:99") && NumberAt(text, 0, 2) < 24 && NumberAt(text, 3, 2) < 60 &&
           NumberAt(text, 6, 2) < 60;
}

// Parts of a second as the three digits that a cell keeps; false where there are more.
bool MakeThousandths(StringView fraction, String& digits) {
    constexpr std::size_t kKept = 3;
    for (std::size_t i = 0; i < fraction.size(); ++i) {
        if (!IsDigit(fraction[i]) || (i >= kKept && fraction[i] != u'0')) return false;
    }
    digits = fraction.substr(0, kKept);
    digits.resize(kKept, u'0');
    return true;
}

}  // namespace

DateStyle MakeCellDate(StringView text, String& cell) {
    constexpr std::size_t kDateLength = 10;
    constexpr std::size_t kTimestampLength = 19;
    const StringView date = text.substr(0, kDateLength);
    if (!IsDate(date)) return DateStyle::None;
    if (text.size() == kDateLength) {
        cell = date;
        cell += u"T00:00:00.000";
        return DateStyle::Date;
    }
    const char16_t between = text[kDateLength];
    StringView rest = text.substr(kDateLength + 1);
    const StringView time = rest.substr(0, kTimestampLength - kDateLength - 1);
    rest.remove_prefix(time.size());
    if ((between != u' ' && between != u'T') || !IsTime(time)) return DateStyle::None;
    if (!rest.empty() && (rest.front() != u'.' || rest.size() == 1)) return DateStyle::None;
    String thousandths;
    if (!MakeThousandths(rest.empty() ? rest : rest.substr(1), thousandths)) {
        return DateStyle::None;
    }
    cell = date;
    cell += u'T';
    cell += time;
    cell += u'.';
    cell += thousandths;
    return DateStyle::Timestamp;
}

}  // namespace DataConsumers
