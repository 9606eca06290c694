#pragma once

#include <memory>
#include <optional>

#include "base/strings.h"
#include "config/job.h"
#include "config/job_lines.h"

// Turns the lines of a job file into a job.
//
// Lines count from 1: over the file with its includes in place by the loose rules, within their own
// file by the strict ones.
// "Incorrect configuration file. 'Step #' clause expected."
// "Incorrect configuration file item: '%s'. 'Source','Target' or 'Setting' clause expected. Line
// %d."
// "Incorrect configuration file item: '%s'. name=value format expected. Line %d."
// and the messages of the rules.
class JobFileReader {
public:
    // open: opens the job file and its includes; outlives the reader.
    JobFileReader(const JobFileRules& rules, const FileOpener& open) : rules_(rules), open_(open) {}

    // The job in the file; nothing after a failure.
    std::optional<Job> Read(String& error, const String& path);
    // The Globals alone, as far as they can be read.
    ParameterSet ReadGlobals(const String& path);

private:
    enum class State { Start, AfterStepHead, InStep, InGlobals };

    bool ParseLine(String& error, StringView line);
    bool ParseStart(String& error, StringView line, bool is_step_head);
    bool ParseAfterStepHead(String& error, StringView line);
    bool ParseItem(String& error, StringView line);
    void BeginStep();
    void EndStep();
    bool EnterSection(StringView line);
    ParameterSet& CurrentSet();
    void SetItem(ParameterSet& set, StringView name, StringView value);
    void AddEnvironmentMacros(StringView names);

    const JobFileRules& rules_;
    const FileOpener& open_;
    Job job_;
    State state_ = State::Start;
    Place place_;                              // of the line that is looked at
    std::size_t line_number_ = 0;              // of that line, as messages count
    std::unique_ptr<ConfigurationStep> step_;  // under construction
    Section section_ = Section::Source;
};
