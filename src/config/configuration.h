// The job: what the command line and the job file say, and how settings are looked up in it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "base/strings.h"
#include "config/configuration_step.h"
#include "config/job.h"
#include "config/kept_files.h"
#include "config/macro_table.h"
#include "core/key.h"
#include "core/parameter_set.h"
#include "core/rule.h"
#include "files/byte_order_mark.h"
#include "platform/clock.h"

namespace Quillon {
class Logger;
}

enum class Quotes { Keep, Strip };  // Strip: one surrounding pair of double quotes goes

class Configuration {
public:
    // clock: tells the time of date and time macros; outlives the configuration.
    explicit Configuration(const platform::Clock& clock = platform::SystemClock())
        : clock_(clock) {}
    Configuration(const Configuration&) = delete;
    Configuration& operator=(const Configuration&) = delete;

    // ---- Taking in ----

    // Takes in the arguments, the program's name not among them: "name=value", or "name" for the
    // value "1". "$name$=value" defines a user macro. Always succeeds.
    bool ParseCommandLine(const std::vector<String>& arguments);

    // Settles what must be known before the first message: the edition, from "-Edition" or from the
    // Globals of the job file, and the Globals that say where messages go. The job file is looked
    // through for that; what is wrong with it is left for Read to tell.
    // "Edition '%s' is not known. Known are 1 and 2."
    bool Settle(String& error, const String& path);

    // Reads a job file with its includes, by the rules of its edition. On failure `error` says what
    // is wrong and where; see JobFileReader.
    bool Read(String& error, const String& path);

    // Applies the quick-job switches to the step at `step_index`. Fails with
    // "Unsupported value '%s' of -Type parameter.".
    bool AdditonalCmdLine(String& error, std::size_t step_index);  // published spelling

    // Lists the job through `logger`. shown: what stands for a value; without it the value itself.
    using Shown = std::function<String(Section section, const ParameterSet::Element& element)>;
    bool Print(String& error, Quillon::Logger& logger, const Shown& shown = {});

    // ---- Looking up ----

    // The value of a key in a section of the current step: the section's own, then that of Globals,
    // then the default of the edition. Keys of the command line and of Globals are looked for there
    // alone, and so are, in edition 2, keys whose names mean something else elsewhere. One pair of
    // quotes goes; macros are replaced where the key says so.
    String Text(Section section, Key key) const;
    // The same with the macros left in it.
    String Unresolved(Section section, Key key) const;
    // The value as it stands, or nothing when it stands nowhere.
    const ParameterSet::Element* Find(Section section, const KeySpec& key) const;
    // What a flag, a number, a size, a word of the key's words means. Values that a strict reading
    // refuses have ended the run before; loose readings mean what they always meant:
    // flags are true for "1" and "true", numbers are the digits at the start.
    bool Flag(Section section, Key key) const;
    std::int64_t Number(Section section, Key key) const;
    std::uint64_t Size(Section section, Key key) const;
    // The position of the word, or nothing for an unknown one.
    std::optional<std::size_t> Word(Section section, Key key) const;

    // The same by name, for settings that are no keys of their own; see Text and IsTrue. An empty
    // value counts as present. Outside any step always the default.
    String GetValue(Section section, StringView name, Quotes quotes,
                    StringView default_value = {}) const;
    bool GetBool(Section section, StringView name, bool default_value) const;
    static bool GetBool(const ParameterSet& set, StringView name, bool default_value);

    // Whether the value of a key is read strictly.
    bool IsStrict(const KeySpec& key) const;
    // Whether a job of this edition knows the key at all.
    bool Knows(const KeySpec& key) const;
    // Whether macros are replaced in its value.
    bool ReplacesMacros(const KeySpec& key) const;
    // Its default in this edition.
    StringView DefaultOf(const KeySpec& key) const;
    // Whether this edition follows a rule that has no key.
    bool Follows(Rule rule) const;
    int Edition() const { return edition_; }

    // ---- Macros (macros.cpp) ----

    void ResolveUserMacros(String& value) const { macros_.ReplaceUser(value); }
    // Replaces "$DATE$" and "$TIME$" by the local time in the layouts of the settings
    // "DateMacroFormat" and "TimeMacroFormat"; without a layout by nothing.
    void ResolveMacros(String& value) const;
    // All macros: user macros, date and time, then "$TABLE$" where the step's source has named its
    // table.
    void ResolveAllMacros(String& value) const;
    MacroTable& Macros() { return macros_; }
    const MacroTable& Macros() const { return macros_; }

    // ---- Parts of the job ----

    const String& ProgramDirectory() const { return program_directory_; }
    const ParameterSet& Globals() const { return job_.globals; }
    const ParameterSet& CommandLine() const { return command_line_; }
    const Job& TheJob() const { return job_; }
    std::size_t StepCount() const { return job_.steps.size(); }
    ConfigurationStep& Step(std::size_t index) { return *job_.steps[index]; }
    std::size_t CurrentStep() const { return current_step_; }
    // Goes to a step; its source has named no table yet.
    void SetCurrentStep(std::size_t index);
    void SetCurrentTransform(std::size_t index) { current_transform_ = index; }

private:
    enum class Fallback { None, Globals };
    const ParameterSet::Element* FindNamed(Section section, StringView name,
                                           Fallback fallback = Fallback::Globals) const;
    bool SettleFrom(String& error, const ParameterSet& globals);

    const platform::Clock& clock_;
    String program_directory_;  // with its trailing separator
    ParameterSet command_line_;
    MacroTable macros_;
    Job job_;
    KeptFiles kept_files_;
    const FileOpener open_ = [this](ErrorRecord& error, const String& name) {
        return kept_files_.Open(error, name);
    };
    int edition_ = 0;  // not settled yet
    std::size_t current_step_ = 0;
    std::size_t current_transform_ = 0;
};
