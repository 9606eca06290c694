// Helpers over the program's text.
#pragma once

#include <cstdint>
#include <vector>

#include "base/strings.h"

namespace text {

constexpr StringView kBlanks = u" \t";
constexpr StringView kBlanksAndLineEnds = u" \t\r\n";

// `value` without the characters of `characters` at both ends.
StringView Trim(StringView value, StringView characters);

// `value` without its first and last character when both are a double quote; else as it is.
StringView StripQuotes(StringView value);

// Compares code unit by code unit, each lowered as a runtime without a locale does it: the letters
// A to Z. All words of the program are ASCII, and a user's language must not change what they mean.
bool EqualsIgnoringCase(StringView left, StringView right);

// `value` with the letters A to Z made small.
String Lowered(StringView value);

// Replaces every `from` in `value`, from left to right; what was inserted is not searched again.
// An empty `from` replaces nothing.
void ReplaceAll(String& value, StringView from, StringView to);

// Reads a decimal integer from the start of `value`: leading blanks, a sign and digits; what
// follows is ignored. 0 without digits; beyond the range of the result its nearest end.
std::int64_t ToInteger(StringView value);

// True for digits that do not begin with 0, with at most one full stop among or behind them: "10",
// "3.5", "3."; not "0", "007", ".5", "-5", "1e3".
bool IsPlainNumber(StringView value);

// One character for each byte, of the byte's value.
String Widen(std::string_view bytes);

}  // namespace text
