#pragma once

#include "providers/collected_source.h"

namespace DataProviders {

// Lists the ODBC data source names of the machine and of the user, as far as `System` and `User`
// want them, with `ShowType` their type and with `Driver` their driver.
class ODBCDataSources final : public CollectedSource {
public:
    static KeyList Keys();

    // "ODBC subsystem is not initialized properly"
    bool Open(String& error, const SectionSettings& settings, RowSet& rows) override;
};

}  // namespace DataProviders
