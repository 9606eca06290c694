#include "run/step_place.h"

#include <algorithm>
#include <iterator>

#include "core/type_table.h"
#include "files/format.h"
#include "system/system_step.h"

namespace {

// What a key may name, what says most first. A command is told from others by what it works on,
// which is its first name.
constexpr Names kNaming[] = {Names::File,       Names::Table,  Names::FileRead,
                             Names::DataSource, Names::Folder, Names::Url};
constexpr std::size_t kNoName = std::size(kNaming);

std::size_t RankOf(const KeyOwner& owner, const KeySpec& key) {
    const auto found = std::find(std::begin(kNaming), std::end(kNaming), key.names);
    const auto rank = static_cast<std::size_t>(found - std::begin(kNaming));
    return owner.section == Section::System && rank != kNoName ? 0 : rank;
}

String NameOfOwner(const Configuration& configuration, const KeyOwner& owner) {
    String name;
    std::size_t best = kNoName;
    for (const KeySpan span : owner.keys) {
        for (const KeySpec& key : span) {
            const ParameterSet::Element* element = configuration.Find(owner.section, key);
            const std::size_t rank = RankOf(owner, key);
            if (rank >= best || element == nullptr || element->value.empty()) continue;
            best = rank;
            name = text::StripQuotes(element->value);
            if (configuration.ReplacesMacros(key)) configuration.ResolveAllMacros(name);
        }
    }
    return name;
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

String NameOfSection(Configuration& configuration, Section section) {
    const Key type = section == Section::System ? kCommand : kType;
    const KeyOwner* owner = FindOwner(section, configuration.Text(section, type));
    return owner == nullptr ? String() : NameOfOwner(configuration, *owner);
}

String PlaceOfStep(Configuration& configuration) {
    const std::size_t index = configuration.CurrentStep();
    const Place head = configuration.Step(index).Head();
    String step = Format(u"Step %u", index + 1);
    if (head.line == 0) return step;
    return step + Format(u" (%s:%u)", configuration.TheJob().files[head.file], head.line);
}

String FailurePrefix(Configuration& configuration, const StepRole& role) {
    String prefix = PlaceOfStep(configuration);
    if (role.section == Section::Settings) return prefix + u": ";
    prefix += u", " + RoleOf(role);
    const Key type = role.section == Section::System ? kCommand : kType;
    const String word = configuration.Text(role.section, type);
    if (!word.empty()) prefix += u" " + word;
    const String name = NameOfSection(configuration, role.section);
    if (!name.empty()) prefix += Format(u" '%s'", name);
    if (role.row != 0) prefix += Format(u", row %u", role.row);
    if (role.line != 0) prefix += Format(u", line %u", role.line);
    return prefix + u": ";
}
