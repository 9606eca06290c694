#include "platform/oledb.h"

namespace platform {

ComSession::ComSession() = default;
ComSession::~ComSession() = default;

std::uint32_t ListOledbProviders(std::vector<OledbProvider>& /*providers*/) {
    constexpr std::uint32_t kClassNotRegistered = 0x80040154;
    return kClassNotRegistered;
}

}  // namespace platform
