#include "consumers/strict_json.h"

#include <algorithm>
#include <set>

#include "base/notices.h"
#include "consumers/escaping.h"
#include "files/format.h"
#include "files/number_text.h"
#include "files/text.h"

namespace DataConsumers {
namespace {

// RFC 8259, section 7.
void AppendEscape(String& out, char16_t unit) {
    constexpr StringView kDigits = u"0123456789abcdef";
    constexpr StringView kNamed = u"\b\f\n\r\t";
    constexpr StringView kLetters = u"bfnrt";
    out += u'\\';
    if (unit >= u' ') {
        out += unit;
    } else if (const std::size_t at = kNamed.find(unit); at != StringView::npos) {
        out += kLetters[at];
    } else {
        out += u"u00";
        out += kDigits[unit >> 4];
        out += kDigits[unit & 0xF];
    }
}

void AppendString(String& out, StringView text) {
    const auto is_escaped = [](auto unit) {
        return (unit == u'"') | (unit == u'\\') | (unit <= u'\x1F');
    };
    out += u'"';
    AppendEscaped(out, text, is_escaped, AppendEscape);
    out += u'"';
}

// Drivers write a bit as a digit, as a letter or as a word.
bool AppendBit(String& out, StringView text) {
    const auto is_one_of = [&](std::initializer_list<StringView> words) {
        return std::any_of(words.begin(), words.end(),
                           [&](StringView word) { return text::EqualsIgnoringCase(text, word); });
    };
    if (is_one_of({u"1", u"t", u"true"})) {
        out += u"true";
    } else if (is_one_of({u"0", u"f", u"false"})) {
        out += u"false";
    } else {
        return false;
    }
    return true;
}

void AppendValue(String& out, ColumnKind kind, const DataValue& value) {
    if (value.IsNull) {
        out += u"null";
    } else if (!(IsNumber(kind) && AppendNumber(out, value.Text)) &&
               !(kind == ColumnKind::Bit && AppendBit(out, value.Text))) {
        AppendString(out, value.Text);
    }
}

// `name` with the first number behind it that makes it unlike all others.
String MakeUnlike(const String& name, const std::set<String>& others) {
    for (std::size_t number = 2;; ++number) {
        String unlike = Format(u"%s_%d", name, number);
        if (!others.contains(unlike)) return unlike;
    }
}

}  // namespace

bool JsonObjects::AppendHead(String& /*error*/, String& /*out*/) {
    std::set<String> all;
    for (const Column& column : Columns()) all.insert(column.name);
    std::set<String> used;
    members_.clear();
    for (const Column& column : Columns()) {
        String name = column.name;
        if (!used.insert(name).second) {
            name = MakeUnlike(name, all);
            all.insert(name);
            TellNotice(
                Format(u"Warning: column %d is written as '%s', because another one is "
                       u"called '%s'.\n",
                       column.position + 1, name, column.name));
        }
        String& member = members_.emplace_back(members_.empty() ? u"" : u",");
        AppendString(member, name);
        member += u':';
    }
    return true;
}

void JsonObjects::AppendObject(const DataRow& row, String& out) const {
    out += u'{';
    for (std::size_t i = 0; i < members_.size(); ++i) {
        out += members_[i];
        AppendValue(out, Columns()[i].kind, row[Columns()[i].position]);
    }
    out += u'}';
}

void StrictJson::AppendFileStart(String& out) {
    first_ = true;
    out += u'[';
}

bool StrictJson::AppendValues(String& /*error*/, const DataRow& row, String& out) {
    out += first_ ? u"\n" : u",\n";
    first_ = false;
    AppendObject(row, out);
    return true;
}

void StrictJson::AppendFileEnd(String& out) { out += first_ ? u"]\n" : u"\n]\n"; }

bool JsonLines::AppendValues(String& /*error*/, const DataRow& row, String& out) {
    AppendObject(row, out);
    out += u'\n';
    return true;
}

}  // namespace DataConsumers
