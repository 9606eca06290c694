#pragma once

#include "base/strings.h"
#include "config/section_settings.h"

// The command HttpCall of a System section: one request to a web server, whose response is read and
// dropped. Fails with "Http call: URL is empty." or as dInternet does.
KeyList HttpCallKeys();
bool HttpCall(String& error, const SectionSettings& settings);
