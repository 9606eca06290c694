#pragma once

#include <cstdint>

#include "base/strings.h"
#include "files/encoding.h"

namespace DataConsumers {

// How a document calls its encoding, and what it can hold.
struct Charset {
    String name;           // as the IANA registry of character sets has it
    bool unicode = false;  // every character; otherwise ASCII is all that is sure
};

Charset CharsetOf(const FileEncoding& encoding);

}  // namespace DataConsumers
