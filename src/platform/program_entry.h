#pragma once

#include <vector>

#include "base/strings.h"

// The exit status of a run that failed.
inline constexpr int kRunFailedStatus = 2;

// The program, as each system's own entry point (main, wmain) calls it. Defined in run/.
// arguments: the command line without the program's name.
// Returns the process exit status.
int ProgramMain(const std::vector<String>& arguments);
