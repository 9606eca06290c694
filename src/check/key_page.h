#pragma once

#include "base/strings.h"
#include "core/key.h"

// The page of all keys in Markdown, docs/keys.md.
String KeyPage();

// The values that a key takes, in a word or two, and its default of an edition between quotes; for
// help and for the page.
String ShownValues(const KeySpec& key);
String ShownDefault(const KeySpec& key, StringView value, StringView quote);
