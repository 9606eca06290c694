#pragma once

#include "base/strings.h"

// The line that a run begins with: title, version, maker.
String BannerLine();
