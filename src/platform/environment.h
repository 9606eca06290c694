// What the system tells a process about itself.
#pragma once

#include "base/strings.h"

namespace platform {

// The folder of the running program, with its trailing separator; empty when the system does not
// tell.
String ProgramDirectory();

// The value of an environment variable, whole; empty when it is not set.
String EnvironmentVariable(const String& name);

// Settles what the process needs of the system before anything else runs: the language of system
// messages, the character type locale by which the ODBC driver manager converts text, standard
// streams that are there, and that a write to a closed pipe or past a file size limit fails instead
// of ending the process.
void PrepareProcess();

}  // namespace platform
