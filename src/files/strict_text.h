// Files that must be what they claim to be: read whole, whatever their size, or refused.
#pragma once

#include <vector>

#include "base/error_record.h"
#include "base/strings.h"
#include "files/byte_order_mark.h"

// Loads a file, or what a pipe gives until it ends, as one text: UTF-8 with or without a byte-order
// mark, or UTF-16 of either order by its mark. The mark is no part of the text; all else is, line
// ends included.
// Fails as OpenByMark does, with "Could not read the file to its end.", and with
// "File '%s', line %u: the bytes are not valid UTF-8." or "... not valid UTF-16." (an unpaired
// surrogate, half a unit at the end). Lines count from 1 and end with a line feed. `text` is then
// empty.
bool LoadStrictText(ErrorRecord& error, const String& name, String& text,
                    const FileOpener& open = platform::InputFile::Open);

// The lines of a text, as views into it. A line ends with LF or CR LF, which is no part of it; the
// last one may go without. An empty line is an empty line, an empty text has none.
std::vector<StringView> SplitIntoLines(StringView text);
