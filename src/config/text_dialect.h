// What the text source and the text target have in common: how a text file is laid out.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "config/section_settings.h"

enum class Dialect {
    Plain,  // a row a line, quotes as always
    Csv,    // RFC 4180
};

inline constexpr KeyTable kDialectKeys({
    {.name = u"Dialect",
     .kind = KeyKind::Word,
     .words = u"Plain CSV",
     .edition1 = u"Plain",
     .edition2 = u"CSV",
     .meaning = u"Plain: quotes as they stand; CSV: RFC 4180",
     .since = Since::Later},
    {.name = u"NullText",
     .meaning = u"the text without quotes that stands for NULL",
     .since = Since::Later,
     .defaults = u"empty with CSV; not set with Plain"},
    {.name = u"Delimiter",
     .edition1 = u"tab",
     .edition2 = u",",
     .meaning = u"what stands between two fields; tab is a tab"},
    {.name = u"Widths",
     .kind = KeyKind::Numbers,
     .meaning = u"fixed columns of so many characters each, with commas between the numbers",
     .since = Since::Later},
});
inline constexpr Key kDialect = kDialectKeys[u"Dialect"];
inline constexpr Key kNullText = kDialectKeys[u"NullText"];
inline constexpr Key kDelimiter = kDialectKeys[u"Delimiter"];
inline constexpr Key kWidths = kDialectKeys[u"Widths"];

// The characters that lay out a text file.
struct TextSigns {
    Dialect dialect = Dialect::Plain;
    String delimiter;
    String quote;
    std::vector<std::size_t> widths;  // empty: delimited
};

// Reads the dialect, the delimiter and the widths. "tab", "<tab>" and, by the rules of the edition,
// "\t" are a tab; any other delimiter is itself.
// quote: the section's key for it
// may_lack: whether a delimiter or a quote may be empty
// Fails, where the dialect is CSV and there are no widths, with
//   "With Dialect=CSV the %s is one character, not '%s'."
//   "With Dialect=CSV the Delimiter and the %s differ from each other and are no line ends."
bool ReadTextSigns(String& error, const SectionSettings& settings, Key quote, bool may_lack,
                   TextSigns& signs);

// Reads `NullText`: nothing where it is not set. Fails with
// "NullText '%s' holds the delimiter, the quote or a line end.".
bool ReadNullText(String& error, const SectionSettings& settings, const TextSigns& signs,
                  std::optional<String>& null_text);
