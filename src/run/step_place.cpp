#include "run/step_place.h"

#include "core/type_table.h"
#include "files/format.h"
#include "system/system_step.h"

namespace {

bool IsNaming(Names names) {
    return names == Names::File || names == Names::FileRead || names == Names::Folder ||
           names == Names::Table || names == Names::DataSource || names == Names::Url;
}

// The first key that names something, of those that have a value: keys that say most come first.
String NameOfOwner(const Configuration& configuration, const KeyOwner& owner) {
    for (const KeySpan span : owner.keys) {
        for (const KeySpec& key : span) {
            const ParameterSet::Element* element = configuration.Find(owner.section, key);
            if (!IsNaming(key.names) || element == nullptr || element->value.empty()) continue;
            String name(text::StripQuotes(element->value));
            if (configuration.ReplacesMacros(key)) configuration.ResolveAllMacros(name);
            return name;
        }
    }
    return {};
}

String RoleOf(const StepRole& role) {
    switch (role.section) {
        case Section::Source:
            return u"source";
        case Section::Target:
            return u"target";
        case Section::Transform:
            return Format(u"transformer %u", role.transformer + 1);
        default:
            return u"system";
    }
}

}  // namespace

String FailurePrefix(Configuration& configuration, const StepRole& role) {
    const std::size_t index = configuration.CurrentStep();
    String prefix = Format(u"Step %u", index + 1);
    const Place head = configuration.Step(index).Head();
    if (head.line != 0) {
        prefix += Format(u" (%s:%u)", configuration.TheJob().files[head.file], head.line);
    }
    prefix += u", " + RoleOf(role);
    const Key type = role.section == Section::System ? kCommand : kType;
    const String word = configuration.Text(role.section, type);
    if (!word.empty()) prefix += u" " + word;
    if (const KeyOwner* owner = FindOwner(role.section, word)) {
        const String name = NameOfOwner(configuration, *owner);
        if (!name.empty()) prefix += Format(u" '%s'", name);
    }
    if (role.row != 0) prefix += Format(u", row %u", role.row);
    if (role.line != 0) prefix += Format(u", line %u", role.line);
    return prefix + u": ";
}
