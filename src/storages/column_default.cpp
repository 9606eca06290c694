#include "storages/column_default.h"

#include <algorithm>

#include "files/format.h"
#include "files/number_text.h"
#include "files/text.h"

namespace sql {
namespace {

bool IsNumber(StringView text) {
    String number;
    return AppendNumber(number, text);
}

bool IsLetter(char16_t unit) {
    return unit == u'_' || (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}

bool IsTruth(StringView word) {
    return text::EqualsIgnoringCase(word, u"true") || text::EqualsIgnoringCase(word, u"false");
}

// Takes brackets away that stand around the whole, as SQL Server tells defaults.
StringView WithoutBrackets(StringView spelling) {
    while (spelling.size() > 1 && spelling.front() == u'(' && spelling.back() == u')') {
        spelling = spelling.substr(1, spelling.size() - 2);
    }
    return spelling;
}

// "::character varying(40)", which PostgreSQL writes behind a text, or nothing.
bool IsCast(StringView rest) {
    return rest.empty() ||
           (rest.starts_with(u"::") && rest.find_first_of(u"'|+-*/") == StringView::npos);
}

char16_t Unescaped(char16_t letter) {
    constexpr StringView kLetters = u"rn0tZ";
    constexpr StringView kUnits{u"\r\n\0\t\x1A", 5};
    const std::size_t found = kLetters.find(letter);
    return found == StringView::npos ? letter : kUnits[found];
}

// The text of a literal that begins with a quote; `rest` is what follows it. Nothing when it does
// not end.
std::optional<String> TakeText(StringView literal, bool escapes, StringView& rest) {
    String text;
    for (std::size_t i = 1; i < literal.size(); ++i) {
        if (escapes && literal[i] == u'\\' && i + 1 < literal.size()) {
            text += Unescaped(literal[++i]);
        } else if (literal[i] != u'\'') {
            text += literal[i];
        } else if (literal.substr(i + 1).starts_with(u'\'')) {
            text += literal[++i];
        } else {
            rest = literal.substr(i + 1);
            return text;
        }
    }
    return std::nullopt;
}

std::optional<String> QuotedDefault(StringView spelling, bool escapes) {
    spelling = WithoutBrackets(spelling);
    if (IsNumber(spelling) || IsTruth(spelling)) return String(spelling);
    if (spelling.starts_with(u"N'")) spelling.remove_prefix(1);
    if (!spelling.starts_with(u'\'')) return std::nullopt;
    StringView rest;
    std::optional<String> text = TakeText(spelling, escapes, rest);
    return text && IsCast(rest) ? text : std::nullopt;
}

// A call of a function, or one of the words that stand for one.
bool IsExpression(StringView spelling) {
    if (text::Lowered(spelling).starts_with(u"current_")) return true;
    const auto name_end = std::find_if_not(spelling.begin(), spelling.end(), IsLetter);
    const bool is_call = name_end != spelling.begin() && name_end != spelling.end() &&
                         *name_end == u'(' && spelling.back() == u')';
    return is_call || text::Lowered(spelling).starts_with(u"x'");
}

// The outer quotes are gone, those inside are still doubled.
std::optional<String> UnquotedDefault(StringView spelling) {
    if (spelling == u"NULL" || IsExpression(spelling)) return std::nullopt;
    const String literal = Format(u"'%s'", spelling);
    StringView rest;
    std::optional<String> text = TakeText(literal, false, rest);
    return rest.empty() ? text : std::nullopt;
}

bool IsOfKind(ColumnKind kind, StringView value) {
    if (::IsNumber(kind)) return IsNumber(value);
    if (kind == ColumnKind::Bit) return IsTruth(value) || value == u"0" || value == u"1";
    return kind != ColumnKind::Binary;
}

}  // namespace

std::optional<String> DefaultValue(Dialect source, ColumnKind kind, StringView spelling) {
    std::optional<String> value = source == Dialect::SQLite
                                      ? UnquotedDefault(spelling)
                                      : QuotedDefault(spelling, source == Dialect::MySQL);
    return value && IsOfKind(kind, *value) ? value : std::nullopt;
}

}  // namespace sql
