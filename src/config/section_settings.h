#pragma once

#include "base/strings.h"
#include "config/configuration.h"

// One section of the current step as its source, target or transformer sees it: settings with
// their fallback to Globals, and the job's macros. A light view; copy it freely.
class SectionSettings {
public:
    SectionSettings(Configuration& configuration, Section section)
        : configuration_(&configuration), section_(section) {}

    // A text setting; one surrounding pair of double quotes goes.
    String Text(StringView name, StringView default_value = {}) const {
        return configuration_->GetValue(section_, name, Quotes::Strip, default_value);
    }
    // A boolean setting, see IsTrue.
    bool Flag(StringView name, bool default_value) const {
        return configuration_->GetBool(section_, name, default_value);
    }
    // A text setting with all macros in it replaced.
    String ResolvedText(StringView name, StringView default_value = {}) const {
        String value = Text(name, default_value);
        ResolveAllMacros(value);
        return value;
    }
    // A boolean setting with all macros in it replaced; double quotes stay, as in Flag.
    bool ResolvedFlag(StringView name, bool default_value) const {
        String value =
            configuration_->GetValue(section_, name, Quotes::Keep, default_value ? u"1" : u"0");
        ResolveAllMacros(value);
        return IsTrue(value);
    }
    void ResolveAllMacros(String& value) const { configuration_->ResolveAllMacros(value); }
    void ResolveUserMacros(String& value) const { configuration_->ResolveUserMacros(value); }

    // Sets a value in the section itself, for later readers of this step.
    void Set(StringView name, StringView value) const {
        configuration_->Step(configuration_->CurrentStep()).List(section_).Set(name, value);
    }

private:
    Configuration* configuration_;
    Section section_;
};
