#include "platform/system_error.h"

#include <cerrno>
#include <system_error>

#include "base/utf8.h"

namespace platform {

ErrorRecord SystemError(std::uint32_t code) {
    if (code == 0) code = static_cast<std::uint32_t>(errno);
    return {FromNativeBytes(std::generic_category().message(static_cast<int>(code))), code};
}

}  // namespace platform
