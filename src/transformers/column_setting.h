// Reading the settings that say which column a transformer works on, and how.
#pragma once

#include <cstddef>

#include "config/section_settings.h"

namespace DataTransformers {

// How the messages name a transformer. ReplaceString, too, speaks of its column as RenameColumn
// does.
constexpr StringView kRemoveColumn = u"Remove Column";
constexpr StringView kRenameColumn = u"Rename Column";
constexpr StringView kChangeDataType = u"Change DataType";

// Reads a setting that must be there. Fails with
// "<transformer> transformer: No '<key>' parameter provided."
bool ReadRequired(String& error, const SectionSettings& settings, StringView transformer, Key key,
                  String& value);

// Turns a column number, counted from 1, into a position counted from 0. Leading digits count. A
// negative number gives a position outside every row. Fails for zero and where there is no digit:
// "<transformer> transformer: invalid column index '<number>'. Expect positive integer."
bool ReadColumnNumber(String& error, StringView transformer, StringView number,
                      std::size_t& position);

// Both: the one column that a transformer works on.
bool ReadColumn(String& error, const SectionSettings& settings, StringView transformer, Key key,
                std::size_t& position);

// `ApplyTo` of the transformers that work on one column.
inline constexpr KeyTable kColumnKeys({
    {.name = u"ApplyTo",
     .kind = KeyKind::Column,
     .meaning = u"the column, counted from 1",
     .needed = u"column"},
});
inline constexpr Key kApplyToColumn = kColumnKeys[u"ApplyTo"];

}  // namespace DataTransformers
