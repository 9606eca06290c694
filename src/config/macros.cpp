#include "base/activity_trail.h"
#include "config/configuration.h"
#include "config/job_keys.h"
#include "files/format.h"
#include "files/text.h"

namespace {

// The order matters: a replaced part is not looked at again by its own line, but by later ones.
String FormatDate(String layout, const platform::LocalTime& now) {
    text::ReplaceAll(layout, u"DD", Format(u"%02d", now.day));
    text::ReplaceAll(layout, u"MM", Format(u"%02d", now.month));
    text::ReplaceAll(layout, u"YYYY", Format(u"%04d", now.year));
    return layout;
}

String FormatTime(String layout, const platform::LocalTime& now) {
    text::ReplaceAll(layout, u"HH", Format(u"%02d", now.hour));
    text::ReplaceAll(layout, u"MM", Format(u"%02d", now.minute));
    text::ReplaceAll(layout, u"SS", Format(u"%02d", now.second));
    return layout;
}

bool Contains(StringView value, StringView part) { return value.find(part) != StringView::npos; }

}  // namespace

void Configuration::ResolveMacros(String& value) const {
    const ScopedState state(u"Configuration::ResolveMacros");
    const platform::LocalTime now = clock_.Now();  // one reading for both macros
    if (Contains(value, kDateMacro)) {
        const String layout = Text(Section::Settings, kDateMacroFormat);
        text::ReplaceAll(value, kDateMacro, FormatDate(layout, now));
    }
    if (Contains(value, kTimeMacro)) {
        const String layout = Text(Section::Settings, kTimeMacroFormat);
        text::ReplaceAll(value, kTimeMacro, FormatTime(layout, now));
    }
}

void Configuration::ResolveAllMacros(String& value) const {
    ResolveUserMacros(value);
    ResolveMacros(value);
    if (macros_.Table() && Follows(Rule::SchemaIsMacro)) {
        text::ReplaceAll(value, kSchemaMacro, macros_.Schema());
    }
    if (!Contains(value, kTableMacro)) return;
    if (macros_.Table()) {
        text::ReplaceAll(value, kTableMacro, *macros_.Table());
    } else if (current_step_ < job_.steps.size()) {
        // A Source section may name the table itself, as an item of that name.
        const ParameterSet& source = job_.steps[current_step_]->List(Section::Source);
        if (const ParameterSet::Element* table = source.Find(kTableMacro)) {
            text::ReplaceAll(value, kTableMacro, table->value);
        }
    }
}
