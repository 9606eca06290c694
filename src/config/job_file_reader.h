#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "base/strings.h"
#include "config/configuration.h"

// Turns the lines of a job file into the Globals, user macros and steps of a configuration.
class JobFileReader {
public:
    explicit JobFileReader(Configuration& configuration) : configuration_(configuration) {}

    bool Read(String& error, const String& path);

private:
    enum class State { Start, AfterStepHead, InStep, InGlobals };

    bool ExpandIncludes(String& error, std::vector<String>& lines) const;
    bool ParseLine(String& error, StringView line);
    bool ParseStart(String& error, StringView line, bool is_step_head);
    bool ParseAfterStepHead(String& error, StringView line);
    bool ParseItem(String& error, StringView line);
    void BeginStep();
    void EndStep();
    bool EnterSection(StringView line);
    void AddEnvironmentMacros(StringView names);

    Configuration& configuration_;
    State state_ = State::Start;
    std::size_t line_number_ = 0;              // from 1 while a line is looked at
    std::unique_ptr<ConfigurationStep> step_;  // under construction
    Section section_ = Section::Source;
};
