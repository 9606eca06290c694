// The job: what the command line and the job file say, and how settings are looked up in it.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "base/strings.h"
#include "config/configuration_step.h"
#include "core/parameter_set.h"
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

    // ---- Taking in (job_file_reader.cpp, quick_job.cpp) ----

    // Takes in the arguments, the program's name not among them: "name=value", or "name" for the
    // value "1". "$name$=value" defines a user macro. Always succeeds.
    bool ParseCommandLine(const std::vector<String>& arguments);

    // Reads a job file with its includes. On failure `error` says what is wrong and where: lines
    // count from 1 over the file with its includes in place.
    bool Read(String& error, const String& path);

    // Applies the quick-job switches to the step at `step_index`. Fails with
    // "Unsupported value '%s' of -Type parameter.".
    bool AdditonalCmdLine(String& error, std::size_t step_index);  // published spelling

    // Lists the job through `logger`.
    bool Print(String& error, Quillon::Logger& logger);

    // ---- Looking up ----

    // A setting of the current step: its own section first, then Globals, then the default. An
    // empty value counts as present. Outside any step always the default. The command line has no
    // fallback to Globals.
    String GetValue(Section section, StringView name, Quotes quotes,
                    StringView default_value = {}) const;

    // The same for a boolean; see IsTrue.
    bool GetBool(Section section, StringView name, bool default_value) const;
    static bool GetBool(const ParameterSet& set, StringView name, bool default_value);

    // ---- Macros (macros.cpp) ----

    // Replaces user macros, in the order of their definition. What was inserted is not searched
    // again for the same macro.
    void ResolveUserMacros(String& value) const;
    // Replaces "$DATE$" and "$TIME$" by the local time in the layouts of the settings
    // "DateMacroFormat" and "TimeMacroFormat"; without a layout by nothing.
    void ResolveMacros(String& value) const;
    // All macros: user macros, date and time, then the step macro "$TABLE$" where the step's
    // source has set it.
    void ResolveAllMacros(String& value) const;

    // ---- Parts of the job ----

    const String& ProgramDirectory() const { return program_directory_; }
    const ParameterSet& Globals() const { return globals_; }
    std::size_t StepCount() const { return steps_.size(); }
    ConfigurationStep& Step(std::size_t index) { return *steps_[index]; }
    std::size_t CurrentStep() const { return current_step_; }
    void SetCurrentStep(std::size_t index) { current_step_ = index; }
    void SetCurrentTransform(std::size_t index) { current_transform_ = index; }

private:
    friend class JobFileReader;

    const ParameterSet::Element* FindInStep(Section section, StringView name) const;

    const platform::Clock& clock_;
    String program_directory_;  // with its trailing separator
    ParameterSet globals_;
    ParameterSet command_line_;
    std::vector<ParameterSet::Element> user_macros_;  // names with their "$" signs
    std::vector<std::unique_ptr<ConfigurationStep>> steps_;
    std::size_t current_step_ = 0;
    std::size_t current_transform_ = 0;
};
