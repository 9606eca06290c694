#include "config/configuration.h"

#include "core/logger.h"
#include "files/format.h"
#include "files/text.h"
#include "platform/environment.h"

namespace {

bool IsMacroName(StringView name) {
    return name.size() > 2 && name.front() == u'$' && name.back() == u'$';
}

}  // namespace

bool Configuration::ParseCommandLine(const std::vector<String>& arguments) {
    program_directory_ = platform::ProgramDirectory();
    for (const StringView argument : arguments) {
        const std::size_t equals = argument.find(u'=');
        const StringView name = argument.substr(0, equals);
        const StringView value =
            equals == StringView::npos ? StringView(u"1") : argument.substr(equals + 1);
        if (IsMacroName(name)) {
            user_macros_.push_back({String(name), String(value)});
        } else {
            command_line_.Set(name, value);
        }
    }
    return true;
}

const ParameterSet::Element* Configuration::FindInStep(Section section, StringView name) const {
    if (current_step_ >= steps_.size()) return nullptr;
    const ParameterSet& own = steps_[current_step_]->List(section, current_transform_);
    const ParameterSet::Element* element = own.Find(name);
    return element != nullptr ? element : globals_.Find(name);
}

String Configuration::GetValue(Section section, StringView name, Quotes quotes,
                               StringView default_value) const {
    const ParameterSet::Element* element =
        section == Section::CommandLine ? command_line_.Find(name) : FindInStep(section, name);
    const StringView value = element != nullptr ? StringView{element->value} : default_value;
    return String(quotes == Quotes::Strip ? text::StripQuotes(value) : value);
}

bool Configuration::GetBool(Section section, StringView name, bool default_value) const {
    return IsTrue(GetValue(section, name, Quotes::Keep, default_value ? u"1" : u"0"));
}

bool Configuration::GetBool(const ParameterSet& set, StringView name, bool default_value) {
    return IsTrue(set.Get(name, default_value ? u"1" : u"0"));
}

bool Configuration::Print(String& error, Quillon::Logger& logger) {
    for (std::size_t i = 0; i < steps_.size(); ++i) {
        ConfigurationStep& step = *steps_[i];
        bool listed = logger.Write(error, Format(u"Step #%d", i), 0) &&
                      step.List(Section::Source).Dump(error, u"source", logger) &&
                      step.List(Section::Target).Dump(error, u"target", logger) &&
                      step.List(Section::System).Dump(error, u"system", logger);
        for (std::size_t t = 0; listed && t < step.TransformCount(); ++t) {
            listed =
                step.List(Section::Transform, t).Dump(error, Format(u"transform%d", t), logger);
        }
        if (!listed || !step.List(Section::Settings).Dump(error, u"settings", logger)) return false;
    }
    return true;
}
