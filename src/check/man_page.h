#pragma once

#include "base/strings.h"

// The manual page in man(7) macros: usage, switches and all keys with both defaults.
String ManPage();
