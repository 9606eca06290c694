#pragma once

#include "base/strings.h"

// The line that a run begins with: title, version, maker.
String BannerLine();

// The version alone: "1.00.00".
String VersionNumber();
