#include "platform/oledb.h"

namespace platform {

std::uint32_t ListOledbProviders(std::vector<OledbProvider>& /*providers*/) {
    constexpr std::uint32_t kClassNotRegistered = 0x80040154;
    return kClassNotRegistered;
}

}  // namespace platform
