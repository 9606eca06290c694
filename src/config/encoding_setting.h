#pragma once

#include "config/section_settings.h"
#include "files/encoding.h"

// The words of every key that names the encoding of a written file.
inline constexpr StringView kEncodingWords = u"ANSI UTF8 UTF16 Unicode UTF-8 UTF-16";
// How many of them a loose reading knows; other words mean ANSI there.
inline constexpr std::size_t kLooseEncodingWords = 4;
inline constexpr std::size_t kLooseNarrowEncodingWords = 2;  // of formats that know no UTF-16

// The encoding that such a key names.
Encoding ReadEncoding(const SectionSettings& settings, Key key);
