#pragma once

#include <cstdint>
#include <optional>

#include "base/strings.h"
#include "config/configuration.h"

// One section of the current step as its source, target or transformer sees it: settings with their
// fallback to Globals and the job's macros; see Configuration. A light view; copy it freely.
class SectionSettings {
public:
    SectionSettings(Configuration& configuration, Section section)
        : configuration_(&configuration), section_(section) {}

    String Text(Key key) const { return configuration_->Text(section_, key); }
    bool Flag(Key key) const { return configuration_->Flag(section_, key); }
    std::int64_t Number(Key key) const { return configuration_->Number(section_, key); }
    std::uint64_t Size(Key key) const { return configuration_->Size(section_, key); }
    // The word that the key has, of an enumeration in the order of the key's words.
    // unknown: what any other text means where words are read loosely.
    template <class Words>
    Words Word(Key key, Words unknown = Words{}) const {
        const std::optional<std::size_t> word = configuration_->Word(section_, key);
        return word ? static_cast<Words>(*word) : unknown;
    }
    // True when the section or Globals give the key a value.
    bool IsSet(Key key) const {
        const ParameterSet::Element* element = configuration_->Find(section_, *key);
        return element != nullptr && !element->value.empty();
    }
    // True when the section or Globals name the key, with a value or without.
    bool IsGiven(Key key) const { return configuration_->Find(section_, *key) != nullptr; }
    bool Follows(Rule rule) const { return configuration_->Follows(rule); }

    // The value of a key with its macros not yet replaced, for those that change with the rows.
    String Unresolved(Key key) const { return configuration_->Unresolved(section_, key); }
    void ResolveAllMacros(String& value) const { configuration_->ResolveAllMacros(value); }
    // Replaces user macros where the lookup has left them.
    void ResolveUserMacros(Key key, String& value) const {
        if (!configuration_->ReplacesMacros(*key)) configuration_->ResolveUserMacros(value);
    }
    // Tells which table the step reads from now on: "$TABLE$" and, of the schema, "$SCHEMA$".
    void NameTable(StringView table, StringView schema = {}) const {
        configuration_->Macros().NameTable(table, schema);
    }

private:
    Configuration* configuration_;
    Section section_;
};
