// Texts of numeric columns as the documents take them.
#pragma once

#include <cstddef>

#include "base/strings.h"

// Appends `text` when it is a number of RFC 8259, section 6, or would be one but for a zero that is
// missing before or behind its point, which is then added: ".5" gives "0.5". Otherwise appends
// nothing and returns false.
bool AppendNumber(String& out, StringView text);

// How many digits such a number has between the first and the last that are not zero.
std::size_t SignificantDigits(StringView number);
