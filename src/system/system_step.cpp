#include "system/system_step.h"

#include "files/format.h"

bool RunSystemStep(String& error, const SectionSettings& settings) {
    error = Format(u"System step contains unsupported command '%s'", settings.Text(u"Command"));
    return false;
}
