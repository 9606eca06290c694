// What the XML, spreadsheet and HTML targets share.
#pragma once

#include "base/strings.h"

// Appends `text` to `out` so that it can stand in XML and HTML, as text or as an attribute's value:
// the quote marks, the ampersand and the angle brackets as the five entities of XML 1.0, section
// 4.6, every UTF-16 unit from 128 up as a reference of its own, "&#x0E9;". The halves of a
// character beyond the basic plane thus become two references, which readers refuse or show as
// U+FFFD. Control characters are copied.
void AppendMarkup(String& out, StringView text);
