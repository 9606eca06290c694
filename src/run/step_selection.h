#pragma once

#include <cstddef>
#include <vector>

#include "base/strings.h"
#include "config/configuration.h"

// The steps that "-only" and "-from" leave, as positions from 0 in the order of the job; all
// without these switches. Fails for a step that the job does not have, a text that is no list of
// steps, and both switches at once:
// "'%s' names no steps of this job, which has %u."
// "'-only' and '-from' exclude each other."
bool SelectSteps(String& error, const Configuration& configuration,
                 std::vector<std::size_t>& steps);
