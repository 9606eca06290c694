#include "platform/replacement.h"

namespace platform {

String Replacement::PartNameOf(const String& name) { return name + u".quillon-part"; }

}  // namespace platform
