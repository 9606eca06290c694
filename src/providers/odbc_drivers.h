#pragma once

#include "providers/collected_source.h"

namespace DataProviders {

// Lists the installed ODBC drivers with their library, its version and the driver's attributes, as
// far as `DLLPath`, `Version` and `Attributes` want them.
class ODBCDrivers final : public CollectedSource {
public:
    static KeyList Keys();

    // "ODBC subsystem is not initialized properly"
    bool Open(String& error, const SectionSettings& settings, RowSet& rows) override;
};

}  // namespace DataProviders
