#include "check/key_catalogue.h"

#include "config/job_keys.h"
#include "config/switches.h"
#include "consumers/data_consumer.h"
#include "files/text.h"
#include "providers/data_provider.h"
#include "system/system_step.h"
#include "transformers/data_transformer.h"

namespace {

// The key that says what the section is comes first.
void AddTypes(std::vector<KeyOwner>& owners, Section section, KeySpan type_key,
              const std::vector<TypeEntry>& types) {
    for (const TypeEntry& type : types) {
        KeyList keys = type.keys();
        keys.insert(keys.begin(), type_key);
        owners.push_back({section, type.word, std::move(keys)});
    }
}

std::vector<KeyOwner> CollectOwners() {
    std::vector<KeyOwner> owners = {{Section::Globals, {}, {kGlobalsKeys}},
                                    {Section::Settings, {}, {kSettingsKeys}}};
    AddTypes(owners, Section::Source, kTypeKeys, DataProviders::DataProvider::Types());
    AddTypes(owners, Section::Target, kTypeKeys, DataConsumers::DataConsumer::Types());
    AddTypes(owners, Section::Transform, kTypeKeys, DataTransformers::DataTransformer::Types());
    AddTypes(owners, Section::System, kSystemKeys, SystemCommands());
    owners.push_back({Section::CommandLine, {}, {kSwitches}});
    return owners;
}

}  // namespace

const std::vector<KeyOwner>& KeyOwners() {
    static const std::vector<KeyOwner> owners = CollectOwners();
    return owners;
}

const KeyOwner* FindOwner(Section section, StringView word) {
    for (const KeyOwner& owner : KeyOwners()) {
        if (owner.section == section && text::EqualsIgnoringCase(owner.word, word)) return &owner;
    }
    return nullptr;
}

const KeySpec* FindKey(KeySpan keys, StringView name) {
    for (const KeySpec& key : keys) {
        if (key.name == name) return &key;
    }
    return nullptr;
}

const KeySpec* FindKey(const KeyList& keys, StringView name) {
    for (const KeySpan span : keys) {
        if (const KeySpec* key = FindKey(span, name)) return key;
    }
    return nullptr;
}

StringView NameOf(Section section) {
    switch (section) {
        case Section::Source:
            return u"Source";
        case Section::Target:
            return u"Target";
        case Section::Transform:
            return u"Transform";
        case Section::Settings:
            return u"Settings";
        case Section::System:
            return u"System";
        case Section::CommandLine:
            return u"the command line";
        case Section::Globals:
            break;
    }
    return u"Globals";
}

String NameOf(const KeyOwner& owner) {
    String name(NameOf(owner.section));
    if (!owner.word.empty()) name.append(u" ").append(owner.word);
    return name;
}
