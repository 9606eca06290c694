#pragma once

#include <vector>

#include "base/strings.h"
#include "config/configuration.h"
#include "core/place.h"

// A mistake in a job.
struct Finding {
    Place place;  // line 0: on the command line, or nowhere in particular
    bool error;   // false: a warning; the job runs in spite of it
    String text;
    bool of_report = false;  // the file of the report is another one of the job's
};

// How deep a check goes.
enum class CheckDepth {
    Refusals,  // what refuses the job before its first step: unknown keys and wrong values
    Whole,     // all that can be found without running: also missing keys, files and folders, and
               // as warnings what a later edition refuses
};

// Looks through a job that has been read, in the order of its lines. Nothing is run or opened.
//
// "'%s' is not a key of %s. Did you mean '%s'?"
// "'%s' is not a key of %s. It is a key of %s."
// "'%s' stands twice; line %u has it already."; "common.inc:%u" where that is another file
// "'%s' is no value of '%s'. It takes %s."
// "Incorrect type for source '%s'." and what the factories say besides
// "The macro '%s' in '%s' is not known."
// "'%s' is missing in %s."
// "The RejectFile '%s' is that of the %s of step %u, too." and the like, see SharedFiles
// "There is no file '%s', which '%s' names." and the like
std::vector<Finding> CheckJob(Configuration& configuration, CheckDepth depth);

// The switches that nobody reads, and values of switches that are none. Switches that the job
// forgives are found by a whole check only, as warnings.
// "'%s' is not a switch. Did you mean '%s'?"
std::vector<Finding> CheckSwitches(const Configuration& configuration, CheckDepth depth);

// A finding as it is shown: "job.qpr:14: " and its text; "warning: " before that of a warning.
String ShownFinding(const Configuration& configuration, const Finding& finding);
