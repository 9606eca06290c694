#pragma once

#include <vector>

#include "base/strings.h"
#include "core/key.h"

// The page of all keys in Markdown, docs/keys.md.
String KeyPage();

// What has the same keys: "Source DatabaseQuery, DatabaseTable" are two words for one thing.
struct KeyGroup {
    String heading;
    const KeyList& keys;
};

// All keys that a job file can hold.
std::vector<KeyGroup> KeyGroups();

// The values that a key takes, in a word or two, and its default of an edition between quotes; for
// help and for the pages.
String ShownValues(const KeySpec& key);
String ShownDefault(const KeySpec& key, StringView value, StringView quote);

// The defaults as help says them, one line where both editions agree, none where there are none:
// "default of edition 1: Ignore".
std::vector<String> ShownDefaults(const KeySpec& key);
