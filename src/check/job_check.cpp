#include "check/job_check.h"

#include <algorithm>
#include <optional>
#include <set>

#include "check/key_catalogue.h"
#include "check/made_paths.h"
#include "check/nearest_name.h"
#include "check/shared_files.h"
#include "config/job_keys.h"
#include "config/switches.h"
#include "core/key_values.h"
#include "files/format.h"
#include "files/text.h"
#include "system/system_step.h"

namespace {

using Element = ParameterSet::Element;

String DidYouMean(StringView name) {
    return name.empty() ? String() : Format(u" Did you mean '%s'?", name);
}

std::vector<StringView> NamesOf(const KeyList& keys) {
    std::vector<StringView> names;
    for (const KeySpan span : keys) {
        for (const KeySpec& key : span) names.push_back(key.name);
    }
    return names;
}

std::vector<StringView> WordsOf(Section section) {
    std::vector<StringView> words;
    for (const KeyOwner& owner : KeyOwners()) {
        if (owner.section == section) words.push_back(owner.word);
    }
    return words;
}

// What a key takes, for the message on a value that is none.
String Taken(const KeySpec& key) {
    switch (key.kind) {
        case KeyKind::Flag:
            return u"1, 0, true, false, yes, no, on or off";
        case KeyKind::Number:
            return u"a whole number";
        case KeyKind::Size:
            return u"a number of bytes, with K, M or G behind it for larger units";
        case KeyKind::Numbers:
            return u"numbers from 1 up, with commas between them";
        case KeyKind::Column:
            return key.words.empty() ? u"a column number from 1 up"
                                     : u"a column number from 1 up, or *";
        case KeyKind::Columns:
            return u"column numbers from 1 up";
        default:
            break;
    }
    String taken;
    const std::vector<StringView> words = key_values::Words(key);
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (i != 0) taken += i + 1 == words.size() ? u" or " : u", ";
        taken += words[i];
    }
    return taken;
}

String NoValue(const KeySpec& key, StringView value) {
    const StringView nearest = NearestName(value, key_values::Words(key));
    return Format(u"'%s' is no value of '%s'.", value, key.name) +
           (nearest.empty() ? Format(u" It takes %s.", Taken(key)) : DidYouMean(nearest));
}

bool RefusesUnknown(const Configuration& configuration) {
    return configuration.Word(Section::Globals, kUnknownKeys) ==
           static_cast<std::size_t>(UnknownKeys::Refuse);
}

bool IsLess(const Finding& left, const Finding& right) {
    if (left.place.file != right.place.file) return left.place.file < right.place.file;
    return left.place.line < right.place.line;
}

class JobChecker {
public:
    JobChecker(Configuration& configuration, CheckDepth depth)
        : configuration_(configuration),
          whole_(depth == CheckDepth::Whole),
          refuses_unknown_(RefusesUnknown(configuration)),
          refuses_macros_(configuration.Word(Section::Globals, kUnresolvedMacros) !=
                          static_cast<std::size_t>(UnresolvedMacros::Keep)) {}

    std::vector<Finding> Run() {
        CheckRepetitions();
        CheckGlobals();
        made_.Add(configuration_.Text(Section::CommandLine, kLogSwitch));
        for (std::size_t i = 0; i < configuration_.StepCount(); ++i) CheckStep(i);
        NoteFilesOfRun();
        CheckShared();
        std::stable_sort(findings_.begin(), findings_.end(), IsLess);
        return std::move(findings_);
    }

private:
    // Adds a finding. Mistakes that this job forgives are told by a whole check only.
    void Add(Place place, bool refused, String text) {
        if (!refused && !whole_) return;
        const bool told = std::any_of(findings_.begin(), findings_.end(), [&](const Finding& one) {
            return one.place.file == place.file && one.place.line == place.line && one.text == text;
        });
        if (!told) findings_.push_back({place, refused, std::move(text)});
    }
    // Adds what only a whole check looks for.
    void AddFault(Place place, String text) {
        if (whole_) Add(place, true, std::move(text));
    }

    void CheckRepetitions() {
        for (const Job::Repetition& one : configuration_.TheJob().repetitions) {
            Add(one.again, refuses_unknown_ || IsOfEdition(one),
                Format(u"'%s' stands twice; %s has it already.", one.name, FirstPlace(one)));
        }
        for (const Job::Repetition& one : configuration_.TheJob().idle_sections) {
            Add(one.again, refuses_unknown_,
                Format(u"The section '%s' has no effect among the Globals.", one.name));
        }
    }

    // The edition of a job that names two is anybody's guess.
    bool IsOfEdition(const Job::Repetition& one) const {
        const Element* edition = configuration_.Globals().Find(kEdition->name);
        return edition != nullptr && one.name == edition->name &&
               one.again.file == edition->place.file && one.again.line == edition->place.line;
    }

    // Where it stands first, with the file unless that is the same.
    String FirstPlace(const Job::Repetition& one) const {
        if (one.first.file == one.again.file) return Format(u"line %u", one.first.line);
        return Format(u"%s:%u", configuration_.TheJob().files[one.first.file], one.first.line);
    }

    void CheckGlobals() {
        const ParameterSet& globals = configuration_.Globals();
        for (std::size_t i = 0; i < globals.Size(); ++i) {
            const Element& element = globals.At(i);
            if (const KeySpec* key = FindKey(kGlobalsKeys, element.name)) {
                CheckValue(*key, element);
            } else if (!IsKeyOfAnySection(element.name)) {
                AddUnknown(Section::Globals, element, NameOf(Section::Globals),
                           NearestOfAll(element.name));
            }
        }
    }

    static bool IsKeyOfAnySection(StringView name) {
        return std::any_of(KeyOwners().begin(), KeyOwners().end(), [&](const KeyOwner& owner) {
            return owner.section != Section::CommandLine && FindKey(owner.keys, name) != nullptr;
        });
    }

    static StringView NearestOfAll(StringView name) {
        std::vector<StringView> names;
        for (const KeyOwner& owner : KeyOwners()) {
            if (owner.section == Section::CommandLine) continue;
            const std::vector<StringView> own = NamesOf(owner.keys);
            names.insert(names.end(), own.begin(), own.end());
        }
        return NearestName(name, names);
    }

    void AddUnknown(Section section, const Element& element, StringView owner, StringView nearest) {
        String text = Format(u"'%s' is not a key of %s.", element.name, owner);
        if (!nearest.empty()) {
            text += DidYouMean(nearest);
        } else if (const String other = OtherOwner(section, element.name); !other.empty()) {
            text += Format(u" It is a key of %s.", other);
        }
        Add(element.place, refuses_unknown_, std::move(text));
    }

    // Whose key a name is: the first kind that has it in the same section, a whole other section
    // where several of its kinds have it.
    static String OtherOwner(Section section, StringView name) {
        const KeyOwner* found = nullptr;
        for (const KeyOwner& owner : KeyOwners()) {
            if (owner.section == Section::CommandLine || !FindKey(owner.keys, name)) continue;
            if (owner.section == section) return NameOf(owner);
            if (found == nullptr) {
                found = &owner;
            } else if (found->section == owner.section) {
                return String(NameOf(owner.section));
            }
        }
        return found == nullptr ? String() : NameOf(*found);
    }

    // ---- Steps ----

    void CheckStep(std::size_t index) {
        configuration_.SetCurrentStep(index);
        String told_by_the_step;
        configuration_.AdditonalCmdLine(told_by_the_step, index);
        ConfigurationStep& step = configuration_.Step(index);
        step_ = &step;
        const KeyOwner* const settings = FindOwner(Section::Settings, {});
        CheckSection(Section::Settings, settings);
        NoteMade(Section::Settings, settings);
        if (!step.List(Section::System).Empty()) {
            CheckSystemStep();
            return;
        }
        CheckSource();
        CheckTarget();
        for (std::size_t i = 0; i < step.TransformCount(); ++i) {
            configuration_.SetCurrentTransform(i);
            CheckTyped(Section::Transform, i, u"Transformer type '%s' is not supported yet");
        }
        configuration_.SetCurrentTransform(0);
        NoteMade(Section::Source, source_);
        NoteMade(Section::Target, target_);
    }

    void CheckSystemStep() {
        for (const Section idle : {Section::Source, Section::Target}) {
            AddIdle(step_->List(idle), idle);
        }
        for (std::size_t i = 0; i < step_->TransformCount(); ++i) {
            AddIdle(step_->List(Section::Transform, i), Section::Transform);
        }
        const String word = configuration_.Text(Section::System, kCommand);
        const KeyOwner* owner = FindOwner(Section::System, word);
        if (owner == nullptr) {
            AddWrongType(Section::System, 0, u"System step contains unsupported command '%s'",
                         word);
        }
        CheckSection(Section::System, owner);
        NoteMade(Section::System, owner);
    }

    void AddIdle(const ParameterSet& set, Section section) {
        if (set.Empty()) return;
        Add(set.At(0).place, refuses_unknown_,
            Format(u"The section '%s' is not read in a System step.", NameOf(section)));
    }

    void CheckSource() {
        const bool has_target = !configuration_.Text(Section::Target, kType).empty();
        if (step_->List(Section::Source).Empty() &&
            configuration_.Text(Section::Source, kType).empty()) {
            source_ = nullptr;
            AddFault(step_->Head(), has_target ? u"The step has a target and no source."
                                               : u"The step has no source.");
            return;
        }
        source_ = CheckTyped(Section::Source, 0, u"Incorrect type for source '%s'.");
    }

    void CheckTarget() {
        target_ = nullptr;
        if (step_->List(Section::Target).Empty() &&
            configuration_.Text(Section::Target, kType).empty()) {
            return;  // the step runs its source alone, and says so
        }
        target_ = CheckTyped(Section::Target, 0, u"Incorrect type for target '%s'.");
    }

    const KeyOwner* CheckTyped(Section section, std::size_t index, StringView wrong_type) {
        const String word = configuration_.Text(section, kType);
        const KeyOwner* owner = FindOwner(section, word);
        if (owner == nullptr) AddWrongType(section, index, wrong_type, word);
        CheckSection(section, owner, index);
        return owner;
    }

    void AddWrongType(Section section, std::size_t index, StringView pattern, StringView word) {
        const KeySpec& key = section == Section::System ? *kCommand : *kType;
        const Element* element = configuration_.Find(section, key);
        const Place place = element != nullptr && element->place.line != 0
                                ? element->place
                                : PlaceOf(step_->List(section, index));
        String text(pattern);
        text::ReplaceAll(text, u"%s", word);
        const String advice = DidYouMean(NearestName(word, WordsOf(section)));
        if (!advice.empty() && !text.ends_with(u'.')) text += u'.';
        // A type that nobody knows is refused by its step in any case.
        const bool refused = refuses_unknown_ || whole_;
        Add(place, refused, text + advice);
    }

    Place PlaceOf(const ParameterSet& set) const {
        return set.Empty() ? step_->Head() : set.At(0).place;
    }

    // owner: null where the type is not known; then all keys of the section's kinds count.
    void CheckSection(Section section, const KeyOwner* owner, std::size_t index = 0) {
        const ParameterSet& set = step_->List(section, index);
        const String name = owner != nullptr ? NameOf(*owner) : String(NameOf(section));
        for (std::size_t i = 0; i < set.Size(); ++i) {
            const Element& element = set.At(i);
            const KeySpec* key = owner != nullptr ? FindKey(owner->keys, element.name)
                                                  : FindInSection(section, element.name);
            if (key != nullptr && !configuration_.Knows(*key)) {
                Add(element.place, false,
                    Format(u"'%s' of %s has no effect in edition 1.", element.name, name));
            } else if (key == nullptr) {
                const KeyList keys = owner != nullptr ? owner->keys : KeyList{};
                AddUnknown(section, element, name, NearestName(element.name, NamesOf(keys)));
            }
        }
        if (owner == nullptr) return;
        for (const KeySpan span : owner->keys) {
            for (const KeySpec& key : span) CheckKey(section, *owner, key, index);
        }
        CheckNeeded(section, *owner, index);
    }

    static const KeySpec* FindInSection(Section section, StringView name) {
        for (const KeyOwner& owner : KeyOwners()) {
            if (owner.section != section) continue;
            if (const KeySpec* key = FindKey(owner.keys, name)) return key;
        }
        return nullptr;
    }

    // The value that the section's kind reads, from the section or from the Globals.
    void CheckKey(Section section, const KeyOwner& owner, const KeySpec& key, std::size_t index) {
        const Element* element = configuration_.Find(section, key);
        if (element == nullptr || element->value.empty()) return;
        CheckValue(key, *element);
        if (configuration_.ReplacesMacros(key)) CheckMacros(section, key, *element);
        CheckPath(section, owner, key, *element, index);
        NoteFile(section, owner, key, *element);
    }

    // Notes what a value names, for what must have a file of its own. Names that change with the
    // rows cannot be compared.
    void NoteFile(Section section, const KeyOwner& owner, const KeySpec& key,
                  const Element& element) {
        const auto use = UseOf(section, key);
        const String path = ValueOf(key, element);
        if (!use || !FindMacro(path).empty() || IsStandardStream(section, owner, path)) return;
        if (*use == SharedFiles::Use::Reject && !SetsAside(section, owner)) return;
        if (*use == SharedFiles::Use::Log && HasLogForAll()) return;
        shared_.Add({*use, configuration_.CurrentStep() + 1, String(key.name),
                     String(NameOf(section)), path, element.place});
    }

    // Nothing for what the files of a System step are: those may come and go.
    static std::optional<SharedFiles::Use> UseOf(Section section, const KeySpec& key) {
        using Use = SharedFiles::Use;
        if (section == Section::Settings) {
            return key.names == Names::File ? std::optional(Use::Log) : std::nullopt;
        }
        if (section != Section::Source && section != Section::Target) return std::nullopt;
        if (key.names == Names::FileAside) return Use::Reject;
        if (key.names == Names::FileRead) return Use::Read;
        return key.names == Names::File ? std::optional(Use::Target) : std::nullopt;
    }

    bool HasLogForAll() const {
        return !configuration_.Text(Section::CommandLine, kLogSwitch).empty();
    }

    // What belongs to no step. A log for all steps is that of each.
    void NoteFilesOfRun() {
        using Use = SharedFiles::Use;
        const std::vector<String>& files = configuration_.TheJob().files;
        for (std::size_t i = 0; i < files.size(); ++i) {
            shared_.Add({Use::Job, 0, i == 0 ? u"job file" : u"included file", {}, files[i], {}});
        }
        const String log = configuration_.Text(Section::CommandLine, kLogSwitch);
        for (std::size_t i = 0; i < configuration_.StepCount(); ++i) {
            shared_.Add({Use::Log, i + 1, u"log", {}, log, {}});
        }
        shared_.Add({Use::Report,
                     0,
                     u"report",
                     {},
                     configuration_.Text(Section::CommandLine, kReportSwitch),
                     {}});
    }

    void CheckShared() {
        for (SharedFiles::Clash& clash : shared_.Clashes()) {
            const bool refused = configuration_.Follows(Rule::FilesMadeOnce);
            Add(clash.place, refused, std::move(clash.text));
            if (clash.use == SharedFiles::Use::Report && (refused || whole_)) {
                findings_.back().of_report = true;
            }
        }
    }

    bool SetsAside(Section section, const KeyOwner& owner) const {
        const KeySpec* key = FindKey(owner.keys, u"OnBadRow");
        const Element* element = key == nullptr ? nullptr : configuration_.Find(section, *key);
        return element != nullptr && text::EqualsIgnoringCase(ValueOf(*key, *element), u"Reject");
    }

    String ValueOf(const KeySpec& key, const Element& element) const {
        String value(text::StripQuotes(element.value));
        if (configuration_.ReplacesMacros(key)) configuration_.ResolveAllMacros(value);
        return value;
    }

    void CheckValue(const KeySpec& key, const Element& element) {
        const String value = ValueOf(key, element);
        if (key_values::IsValid(key, value)) return;
        Add(element.place, configuration_.IsStrict(key), NoValue(key, value));
    }

    // ---- Macros ----

    void CheckMacros(Section section, const KeySpec& key, const Element& element) {
        const StringView value = text::StripQuotes(element.value);
        for (std::size_t at = 0;;) {
            const StringView macro = FindMacro(value, at);
            if (macro.empty()) return;
            at = static_cast<std::size_t>(macro.data() - value.data()) + macro.size();
            if (IsKnownMacro(section, key, macro)) continue;
            Add(element.place, refuses_macros_,
                Format(u"The macro '%s' in '%s' is not known.", macro, key.name));
        }
    }

    bool IsKnownMacro(Section section, const KeySpec& key, StringView macro) const {
        if (macro == kDateMacro || macro == kTimeMacro) return true;
        const auto& user = configuration_.Macros().UserMacros();
        if (std::any_of(user.begin(), user.end(),
                        [&](const Element& one) { return one.name == macro; })) {
            return true;
        }
        return (macro == kTableMacro || macro == kSchemaMacro) && section == Section::Target &&
               SourceNamesTable(key);
    }

    // Whether the step's source says which table it reads, for every key or for the table's name.
    bool SourceNamesTable(const KeySpec& key) const {
        if (source_ == nullptr) return false;
        for (const KeySpan span : source_->keys) {
            for (const KeySpec& one : span) {
                if (one.names == Names::Tables) return true;
                if (one.names == Names::Catalogue) return key.names == Names::Table;
                const Element* element = configuration_.Find(Section::Source, one);
                if (one.names == Names::Table && element != nullptr) return true;
            }
        }
        return false;
    }

    // ---- What must be there ----

    // Keys that must have a value, and groups of which one must.
    void CheckNeeded(Section section, const KeyOwner& owner, std::size_t index) {
        const Place place = PlaceOf(step_->List(section, index));
        std::set<StringView> met;
        for (const KeySpan span : owner.keys) {
            for (const KeySpec& key : span) {
                const Element* element = configuration_.Find(section, key);
                if (element != nullptr && !element->value.empty()) met.insert(key.needed);
            }
        }
        for (const KeySpan span : owner.keys) {
            for (const KeySpec& key : span) {
                if (key.needed.empty() || !met.insert(key.needed).second) continue;
                AddFault(place, Format(u"%s is missing in %s.", NamesOfGroup(owner, key.needed),
                                       NameOf(owner)));
            }
        }
    }

    static String NamesOfGroup(const KeyOwner& owner, StringView group) {
        String names;
        for (const KeySpan span : owner.keys) {
            for (const KeySpec& key : span) {
                if (key.needed != group) continue;
                names += Format(u"%s'%s'", names.empty() ? u"" : u" or ", key.name);
            }
        }
        return names;
    }

    void CheckPath(Section section, const KeyOwner& owner, const KeySpec& key,
                   const Element& element, std::size_t /*index*/) {
        if (!whole_ || key.names == Names::Nothing) return;
        const String path = ValueOf(key, element);
        if (path.empty() || !FindMacro(path).empty() || IsStandardStream(section, owner, path)) {
            return;
        }
        if (const String fault = made_.Fault(key, path); !fault.empty()) {
            AddFault(element.place, fault);
        }
    }

    static bool IsStandardStream(Section section, const KeyOwner& /*owner*/, StringView path) {
        const bool streams = section == Section::Source || section == Section::Target;
        return streams && (text::EqualsIgnoringCase(path, u"CONSOLE") ||
                           text::EqualsIgnoringCase(path, u"STDOUT"));
    }

    // What this step makes is there for those that follow.
    void NoteMade(Section section, const KeyOwner* owner) {
        if (owner == nullptr) return;
        for (const KeySpan span : owner->keys) {
            for (const KeySpec& key : span) {
                const Element* element = configuration_.Find(section, key);
                const bool made = key.names == Names::File || key.names == Names::FileAside ||
                                  key.names == Names::MadeFolder;
                if (made && element != nullptr) {
                    made_.Add(ValueOf(key, *element));
                }
            }
        }
    }

    Configuration& configuration_;
    const bool whole_;
    const bool refuses_unknown_;
    const bool refuses_macros_;
    ConfigurationStep* step_ = nullptr;
    const KeyOwner* source_ = nullptr;
    const KeyOwner* target_ = nullptr;
    MadePaths made_;
    SharedFiles shared_;
    std::vector<Finding> findings_;
};

}  // namespace

std::vector<Finding> CheckJob(Configuration& configuration, CheckDepth depth) {
    return JobChecker(configuration, depth).Run();
}

std::vector<Finding> CheckSwitches(const Configuration& configuration, CheckDepth depth) {
    const bool refused = RefusesUnknown(configuration);
    std::vector<Finding> findings;
    const ParameterSet& given = configuration.CommandLine();
    for (std::size_t i = 0; i < given.Size(); ++i) {
        const Element& element = given.At(i);
        const KeySpec* key = FindKey(kSwitches, element.name);
        if (key == nullptr) {
            if (!refused && depth != CheckDepth::Whole) continue;
            const StringView nearest = NearestName(element.name, NamesOf({kSwitches}));
            findings.push_back(
                {{},
                 refused,
                 Format(u"'%s' is not a switch.", element.name) + DidYouMean(nearest)});
        } else if (configuration.IsStrict(*key) && !key_values::IsValid(*key, element.value)) {
            findings.push_back({{}, true, NoValue(*key, element.value)});
        }
    }
    return findings;
}

String ShownFinding(const Configuration& configuration, const Finding& finding) {
    String text = (finding.error ? u"" : u"warning: ") + finding.text;
    if (finding.place.line == 0) return text;
    return Format(u"%s:%u: %s", configuration.TheJob().files[finding.place.file],
                  finding.place.line, text);
}
