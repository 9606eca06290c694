#include "config/macro_table.h"

#include <algorithm>

#include "files/text.h"

void MacroTable::ReplaceUser(String& value) const {
    for (const ParameterSet::Element& macro : user_) {
        text::ReplaceAll(value, macro.name, macro.value);
    }
}

StringView FindMacro(StringView value, std::size_t start) {
    const auto is_capital = [](char16_t unit) { return unit >= u'A' && unit <= u'Z'; };
    const auto may_follow = [&](char16_t unit) {
        return is_capital(unit) || unit == u'_' || (unit >= u'0' && unit <= u'9');
    };
    for (; (start = value.find(u'$', start)) != StringView::npos; ++start) {
        const StringView rest = value.substr(start + 1);
        const auto end = std::find_if_not(rest.begin(), rest.end(), may_follow);
        if (end == rest.begin() || end == rest.end() || *end != u'$' || !is_capital(rest.front())) {
            continue;
        }
        return value.substr(start, static_cast<std::size_t>(end - rest.begin()) + 2);
    }
    return {};
}
