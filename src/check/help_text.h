// Help and pages that are made from the tables of keys.
#pragma once

#include "base/strings.h"

// What "-help" shows: without a word the usage; for a type word, a command or a section its keys
// with their words and both defaults; for "keys" the page of all keys in Markdown; for "man" the
// manual page; for "bash" and "powershell" a completion script. Lines end with LF.
// Empty for a word that nothing is called.
String HelpOn(StringView word);

// What such a word may be, for suggestions: "keys" and every type word, command and section.
StringView NearestHelpWord(StringView word);
