// Every key of every section, found by one walk over the tables of sources, targets, transformers,
// commands and switches.
#pragma once

#include <vector>

#include "base/strings.h"
#include "config/configuration_step.h"
#include "core/key.h"

// What a section of a job can be, with its keys.
struct KeyOwner {
    Section section;
    StringView word;  // the type word or command; empty for Globals, Settings and the command line
    KeyList keys;     // "Type" or "Command" among them
};

// All owners: Globals, Settings, sources, targets, transformers, commands, the command line.
const std::vector<KeyOwner>& KeyOwners();

// The owner of a section that a type word or command names, any letter case; null when none is.
const KeyOwner* FindOwner(Section section, StringView word);

// The key of that name, or null.
const KeySpec* FindKey(const KeyList& keys, StringView name);
const KeySpec* FindKey(KeySpan keys, StringView name);

// How messages and pages call them: "Target", and "Target TextFile".
StringView NameOf(Section section);
String NameOf(const KeyOwner& owner);
