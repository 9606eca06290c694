// The names of tables and columns as statements write them.
#pragma once

#include <vector>

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

// A table's name, from the outermost piece to the innermost: a catalogue, a schema, the table. The
// pieces are plain names, without quotes.
using TableName = std::vector<String>;

// Divides a name at each full stop outside double quotes, brackets and backticks. The pieces keep
// theirs.
std::vector<StringView> PiecesOf(StringView name);

// A piece without the double quotes, brackets or backticks around it; a closing one that stands
// twice inside is one.
String PlainName(StringView piece);

}  // namespace sql
