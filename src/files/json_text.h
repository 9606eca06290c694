#pragma once

#include "base/strings.h"

// Appends a text as a JSON string, quotes included (RFC 8259, section 7).
void AppendJsonString(String& out, StringView text);
