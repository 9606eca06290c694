#include <cassert>

#include "base/activity_trail.h"
#include "config/configuration.h"
#include "config/switches.h"
#include "files/format.h"

namespace {

// A switch that is copied into a step. The keys belong to sources and targets, which this folder
// does not know: the switch names them.
struct QuickSwitch {
    StringView name;
    Quotes quotes;
    Section section;
    StringView key;
};

constexpr QuickSwitch kQuickSwitches[] = {
    {u"-DSN", Quotes::Keep, Section::Source, u"DSN"},
    {u"-Query", Quotes::Strip, Section::Source, u"Query"},
    {u"-Login", Quotes::Keep, Section::Source, u"User"},
    {u"-Password", Quotes::Keep, Section::Source, u"Password"},
    {u"-Script", Quotes::Strip, Section::Source, u"QueryFile"},
    {u"-Header", Quotes::Strip, Section::Target, u"Header"},
    {u"-Output", Quotes::Keep, Section::Target, u"Name"},
    {u"-LogName", Quotes::Strip, Section::Settings, u"Log"},
};

void MakeQueryToTextFile(ConfigurationStep& step) {
    step.List(Section::Source).Set(u"Type", u"DatabaseQuery");
    ParameterSet& target = step.List(Section::Target);
    target.Set(u"Type", u"TextFile");
    target.Set(u"Header", u"1");
    target.Set(u"Delimiter", u"tab");
}

}  // namespace

bool Configuration::AdditonalCmdLine(String& error, std::size_t step_index) {
    const ScopedState state(u"Configuration::AdditonalCmdLine");
    const String type = GetValue(Section::CommandLine, kTypeSwitch->name, Quotes::Keep);
    if (!type.empty()) {
        if (job_.steps.empty()) job_.steps.push_back(std::make_unique<ConfigurationStep>());
        if (type != u"DatabaseQueryToTextFile") {
            error = Format(u"Unsupported value '%s' of -Type parameter.", type);
            return false;
        }
        MakeQueryToTextFile(*job_.steps[step_index]);
    }
    assert(step_index < job_.steps.size());
    for (const QuickSwitch& quick : kQuickSwitches) {
        const String value = GetValue(Section::CommandLine, quick.name, quick.quotes);
        if (!value.empty()) job_.steps[step_index]->List(quick.section).Set(quick.key, value);
    }
    return true;
}
