// Completion of the command line, as scripts for two shells.
#pragma once

#include "base/strings.h"

// For bash: switches, the words of "-help=" and of "-check=", file names for "-config=" and the
// like. To be sourced.
String BashCompletion();

// The same for PowerShell 5 and later.
String PowerShellCompletion();
