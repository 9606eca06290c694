// The OLE DB providers of the machine. Only Windows has such.
#pragma once

#include <cstdint>
#include <vector>

#include "base/strings.h"

namespace platform {

struct OledbProvider {
    String name;
    String description;
};

// Lists what the OLE DB root enumerator enumerates. Returns 0, or the HRESULT of what failed;
// elsewhere than on Windows 0x80040154 (REGDB_E_CLASSNOTREG).
std::uint32_t ListOledbProviders(std::vector<OledbProvider>& providers);

}  // namespace platform
