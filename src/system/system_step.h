#pragma once

#include "base/strings.h"
#include "config/section_settings.h"

// Carries out the command of a System section. Fails with
// "System step contains unsupported command '%s'", or as the command does.
bool RunSystemStep(String& error, const SectionSettings& settings);
