#include "system/system_step.h"

#include "files/format.h"
#include "files/text.h"
#include "system/http_call.h"

bool RunSystemStep(String& error, const SectionSettings& settings) {
    const String command = settings.Text(u"Command");
    if (text::EqualsIgnoringCase(command, u"HttpCall")) return HttpCall(error, settings);
    error = Format(u"System step contains unsupported command '%s'", command);
    return false;
}
