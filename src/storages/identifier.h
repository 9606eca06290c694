// The names of tables and columns as statements write them.
#pragma once

#include "base/strings.h"

namespace sql {

// Appends a text with every `quote` in it doubled.
void AppendDoubling(String& statement, StringView text, char16_t quote);

// Appends any name as a delimited identifier (SQL-92, section 5.2): between quotes, with those in
// it doubled.
// quote: what the database has for quotes, one character; empty: it takes the name as it is
void AppendIdentifier(String& statement, StringView name, StringView quote = u"\"");

// Appends a name between double quotes letter for letter: double quotes in it stay as they are.
void AppendBetweenQuotes(String& statement, StringView name);

}  // namespace sql
