#pragma once

#include "config/section_settings.h"
#include "files/encoding.h"
#include "files/text_writer.h"

// The words of every key that names the encoding of a written file.
inline constexpr StringView kEncodingWords = u"ANSI UTF8 UTF16 Unicode UTF-8 UTF-16 CPnnnn";
// How many of them a loose reading knows; other words mean ANSI there.
inline constexpr std::size_t kLooseEncodingWords = 4;
inline constexpr std::size_t kLooseNarrowEncodingWords = 2;  // of formats that know no UTF-16
// The words of every key that says what becomes of a character that an encoding lacks.
inline constexpr StringView kUnmappableWords = u"Cut Replace Stop";
// How the page of keys puts the default of a mark, which ReadTextForm knows.
inline constexpr StringView kMarkDefaults = u"1; edition 2: 0, with UTF16 1";

// The encoding that such a key names.
FileEncoding ReadEncoding(const SectionSettings& settings, Key key);

// The keys of a file that is written.
struct TextFormKeys {
    Key encoding;
    Key mark;
    Key unmappable;
};

// How a file is written.
TextForm ReadTextForm(const SectionSettings& settings, const TextFormKeys& keys);
