// How the values of keys are read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "base/strings.h"
#include "core/key.h"

namespace key_values {

// The strict readings. Nothing is returned for a value that is none, an empty one among them.
//
// Any letter case of 1, 0, true, false, yes, no, on, off.
std::optional<bool> Flag(StringView value);
// Digits and nothing else, up to 2^63 - 2.
std::optional<std::int64_t> Number(StringView value);
// Digits, with K, M or G behind them 1024, 1024² or 1024³ times as many; any letter case.
std::optional<std::uint64_t> Size(StringView value);
// Numbers from 1 up with commas between them, blanks around them left out.
std::optional<std::vector<std::size_t>> Numbers(StringView value);

// The words of a key, in their order.
std::vector<StringView> Words(const KeySpec& spec);
// The position of the word that `value` is. A word that ends with "nnnn" is any text of its other
// letters and one to five digits.
// strict: in any letter case; otherwise as loose readings do.
std::optional<std::size_t> Word(const KeySpec& spec, StringView value, bool strict);

// Whether a strict reading takes `value` for this key. Type words are not looked at.
bool IsValid(const KeySpec& spec, StringView value);

}  // namespace key_values
