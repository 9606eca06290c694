#pragma once

#include "providers/collected_source.h"

namespace DataProviders {

// Lists the OLE DB providers of the machine: Name, Description.
class OledbProviders final : public CollectedSource {
public:
    static KeyList Keys();

    // "CEnumerator open error [0x%08X]\n"
    bool Open(String& error, const SectionSettings& settings, RowSet& rows) override;
};

}  // namespace DataProviders
