#pragma once

#include "base/strings.h"

namespace DataConsumers {

// Whether `text` is a name of elements and attributes in every edition of XML 1.0, without a colon,
// which stands for namespaces.
bool IsXmlName(StringView text);

// A name of that kind for any text. What names cannot hold, and an underscore that looks like the
// start of such an escape, becomes "_xHHHH_" with the number of the character, in six digits beyond
// U+FFFF. The empty text becomes "_".
// unicode: the document's encoding has every character; otherwise all beyond ASCII is escaped.
String XmlNameOf(StringView text, bool unicode);

}  // namespace DataConsumers
