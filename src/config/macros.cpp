#include "base/activity_trail.h"
#include "config/configuration.h"
#include "files/format.h"
#include "files/text.h"

namespace {

constexpr StringView kDateMacro = u"$DATE$";
constexpr StringView kTimeMacro = u"$TIME$";
constexpr StringView kTableMacro = u"$TABLE$";

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

void Configuration::ResolveUserMacros(String& value) const {
    for (const ParameterSet::Element& macro : user_macros_) {
        text::ReplaceAll(value, macro.name, macro.value);
    }
}

void Configuration::ResolveMacros(String& value) const {
    const ScopedState state(u"Configuration::ResolveMacros");
    const platform::LocalTime now = clock_.Now();  // one reading for both macros
    const auto layout = [&](StringView key) {
        return GetValue(Section::Settings, key, Quotes::Strip);
    };
    if (Contains(value, kDateMacro)) {
        text::ReplaceAll(value, kDateMacro, FormatDate(layout(u"DateMacroFormat"), now));
    }
    if (Contains(value, kTimeMacro)) {
        text::ReplaceAll(value, kTimeMacro, FormatTime(layout(u"TimeMacroFormat"), now));
    }
}

void Configuration::ResolveAllMacros(String& value) const {
    ResolveUserMacros(value);
    ResolveMacros(value);
    if (!Contains(value, kTableMacro) || current_step_ >= steps_.size()) return;
    const ParameterSet::Element* table =
        steps_[current_step_]->List(Section::Source).Find(kTableMacro);
    if (table != nullptr) text::ReplaceAll(value, kTableMacro, table->value);
}
