#pragma once

#include <cstdint>

#include "base/strings.h"
#include "check/key_catalogue.h"
#include "config/configuration.h"

// Who is at work in a step, for the messages of failures.
struct StepRole {
    Section section = Section::Source;
    std::size_t transformer = 0;  // of a Transform section, from 0
    std::uint64_t row = 0;        // of the source, from 1; 0 where none applies
    std::uint64_t line = 0;       // of a source's file, from 1; likewise
};

// What the settings of a section of the current step name: a file, a table or a data source; empty
// for nothing.
String NameOfSection(Configuration& configuration, Section section);

// Where the current step begins: Step 2 (job.qpr:9)
String PlaceOfStep(Configuration& configuration);

// What stands before the text of a failure in the current step:
//     Step 2 (job.qpr:9), target TextFile 'out.csv', row 1234:
// with a blank behind it. The name is that of the file, the table or the data source. What stands
// in the Settings is nobody's: "Step 2 (job.qpr:9): ".
String FailurePrefix(Configuration& configuration, const StepRole& role);
