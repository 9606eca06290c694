#include "config/configuration.h"

#include <utility>

#include "base/activity_trail.h"
#include "config/job_file_reader.h"
#include "config/job_keys.h"
#include "config/switches.h"
#include "core/key_values.h"
#include "core/logger.h"
#include "files/format.h"
#include "files/text.h"
#include "platform/environment.h"

namespace {

bool IsMacroName(StringView name) {
    return name.size() > 2 && name.front() == u'$' && name.back() == u'$';
}

}  // namespace

// ---- Taking in ----

bool Configuration::ParseCommandLine(const std::vector<String>& arguments) {
    program_directory_ = platform::ProgramDirectory();
    for (const StringView argument : arguments) {
        const std::size_t equals = argument.find(u'=');
        const StringView name = argument.substr(0, equals);
        const StringView value =
            equals == StringView::npos ? StringView(u"1") : argument.substr(equals + 1);
        if (IsMacroName(name)) {
            macros_.Define(name, value);
        } else {
            command_line_.Set(name, value);
        }
    }
    return true;
}

bool Configuration::SettleFrom(String& error, const ParameterSet& globals) {
    String edition = Text(Section::CommandLine, kEditionSwitch);
    if (edition.empty()) {
        edition = text::StripQuotes(globals.Get(kEdition->name, {}));
    }
    if (edition.empty()) edition = kEdition->edition1;
    edition_ = edition == u"2" ? 2 : 1;
    if (edition == u"1" || edition == u"2") return true;
    error = Format(u"Edition '%s' is not known. Known are 1 and 2.", edition);
    return false;
}

bool Configuration::Settle(String& error, const String& path) {
    job_.globals = JobFileReader(kTolerantJobFile, open_).ReadGlobals(path);
    return SettleFrom(error, job_.globals);
}

bool Configuration::Read(String& error, const String& path) {
    const ScopedState state(u"Configuration::Read");
    if (edition_ == 0 && !Settle(error, path)) return false;
    std::optional<Job> job =
        JobFileReader(edition_ == 1 ? kLooseJobFile : kStrictJobFile, open_).Read(error, path);
    if (!job) return false;
    job_ = std::move(*job);
    for (const ParameterSet::Element& macro : job_.environment_macros) {
        macros_.Define(macro.name, macro.value);
    }
    return true;
}

bool Configuration::Print(String& error, Quillon::Logger& logger, const Shown& shown) {
    for (std::size_t i = 0; i < StepCount(); ++i) {
        ConfigurationStep& step = Step(i);
        const auto list = [&](Section section, StringView prefix, std::size_t transform) {
            ParameterSet::Shown show;
            if (shown) show = [&](const ParameterSet::Element& one) { return shown(section, one); };
            return step.List(section, transform).Dump(error, prefix, logger, show);
        };
        bool listed = logger.Write(error, Format(u"Step #%d", i), 0) &&
                      list(Section::Source, u"source", 0) && list(Section::Target, u"target", 0) &&
                      list(Section::System, u"system", 0);
        for (std::size_t t = 0; listed && t < step.TransformCount(); ++t) {
            listed = list(Section::Transform, Format(u"transform%d", t), t);
        }
        if (!listed || !list(Section::Settings, u"settings", 0)) return false;
    }
    return true;
}

void Configuration::SetCurrentStep(std::size_t index) {
    current_step_ = index;
    macros_.ForgetTable();
}

// ---- Looking up ----

const ParameterSet::Element* Configuration::FindNamed(Section section, StringView name,
                                                      Fallback fallback) const {
    if (section == Section::CommandLine) return command_line_.Find(name);
    if (section != Section::Globals) {
        if (current_step_ >= job_.steps.size()) return nullptr;
        const ParameterSet* own = job_.steps[current_step_]->Find(section, current_transform_);
        const ParameterSet::Element* element = own != nullptr ? own->Find(name) : nullptr;
        if (element != nullptr || fallback == Fallback::None) return element;
    }
    return job_.globals.Find(name);
}

const ParameterSet::Element* Configuration::Find(Section section, const KeySpec& key) const {
    if (!Knows(key)) return nullptr;
    return FindNamed(section, key.name,
                     key.own && IsStrict(key) ? Fallback::None : Fallback::Globals);
}

bool Configuration::Knows(const KeySpec& key) const {
    return key.since != Since::Edition2Only || edition_ == 2;
}

bool Configuration::IsStrict(const KeySpec& key) const {
    return key.since == Since::Later || edition_ == 2;
}

bool Configuration::ReplacesMacros(const KeySpec& key) const {
    return key.macros == Macros::Replaced || (key.macros == Macros::ByEdition && edition_ == 2);
}

StringView Configuration::DefaultOf(const KeySpec& key) const {
    return edition_ == 2 ? key.edition2 : key.edition1;
}

bool Configuration::Follows(Rule /*rule*/) const { return edition_ == 2; }

String Configuration::Unresolved(Section section, Key key) const {
    const ParameterSet::Element* element = Find(section, *key);
    return String(element == nullptr ? DefaultOf(*key) : text::StripQuotes(element->value));
}

// An empty value is the default where it is read strictly, unless it is a text.
String Configuration::Text(Section section, Key key) const {
    String value = Unresolved(section, key);
    if (ReplacesMacros(*key)) ResolveAllMacros(value);
    const bool text = key->kind == KeyKind::Text || key->kind == KeyKind::Type;
    if (value.empty() && !text && IsStrict(*key)) return String(DefaultOf(*key));
    return value;
}

bool Configuration::Flag(Section section, Key key) const {
    if (IsStrict(*key)) return key_values::Flag(Text(section, key)).value_or(false);
    const ParameterSet::Element* element = Find(section, *key);
    if (element == nullptr) return IsTrue(DefaultOf(*key));
    // Quotes stay around the booleans of edition 1, which makes them false.
    String value = element->value;
    if (ReplacesMacros(*key)) ResolveAllMacros(value);
    return IsTrue(value);
}

std::int64_t Configuration::Number(Section section, Key key) const {
    return text::ToInteger(Text(section, key));
}

std::uint64_t Configuration::Size(Section section, Key key) const {
    return key_values::Size(Text(section, key)).value_or(0);
}

std::optional<std::size_t> Configuration::Word(Section section, Key key) const {
    const bool strict = IsStrict(*key);
    const auto word = key_values::Word(*key, Text(section, key), strict);
    // What is told of a wrong word is told in the way of the default.
    return word || !strict ? word : key_values::Word(*key, DefaultOf(*key), strict);
}

String Configuration::GetValue(Section section, StringView name, Quotes quotes,
                               StringView default_value) const {
    const ParameterSet::Element* element = FindNamed(section, name);
    const StringView value = element != nullptr ? StringView{element->value} : default_value;
    return String(quotes == Quotes::Strip ? text::StripQuotes(value) : value);
}

bool Configuration::GetBool(Section section, StringView name, bool default_value) const {
    return IsTrue(GetValue(section, name, Quotes::Keep, default_value ? u"1" : u"0"));
}

bool Configuration::GetBool(const ParameterSet& set, StringView name, bool default_value) {
    return IsTrue(set.Get(name, default_value ? u"1" : u"0"));
}
