#include "providers/odbc_drivers.h"

#include "platform/driver_library.h"
#include "storages/odbc_environment.h"

namespace DataProviders {
namespace {

constexpr KeyTable kKeys({
    {.name = u"DLLPath",
     .kind = KeyKind::Flag,
     .edition1 = u"1",
     .edition2 = u"1",
     .meaning = u"a column with the library"},
    {.name = u"Version",
     .kind = KeyKind::Flag,
     .edition1 = u"1",
     .edition2 = u"1",
     .meaning = u"a column with the library's version"},
    {.name = u"Attributes",
     .kind = KeyKind::Flag,
     .edition1 = u"1",
     .edition2 = u"1",
     .meaning = u"a column with the driver's attributes"},
});
constexpr Key kDllPath = kKeys[u"DLLPath"];
constexpr Key kVersion = kKeys[u"Version"];
constexpr Key kAttributes = kKeys[u"Attributes"];

}  // namespace

KeyList ODBCDrivers::Keys() { return {kKeys}; }

bool ODBCDrivers::Open(String& error, const SectionSettings& settings, RowSet& rows) {
    Clear();
    const bool with_library = settings.Flag(kDllPath);
    const bool with_version = settings.Flag(kVersion);
    const bool with_attributes = settings.Flag(kAttributes);
    std::vector<DataStorages::DriverEntry> drivers;
    if (!DataStorages::ODBCEnvironment().Drivers(error, drivers)) return false;
    for (const DataStorages::DriverEntry& driver : drivers) {
        const String library = platform::DriverLibrary(driver.Name, driver.Attributes);
        Values values{driver.Name};
        if (with_library) values.push_back(library);
        if (with_version) values.push_back(platform::DriverLibraryVersion(library));
        if (with_attributes) values.push_back(driver.Attributes);
        Add(std::move(values));
    }
    rows.Columns = {TextColumn(u"Driver", 256)};
    if (with_library) rows.Columns.push_back(TextColumn(u"DLLPath", 256));
    if (with_version) rows.Columns.push_back(TextColumn(u"Version", 16));
    if (with_attributes) rows.Columns.push_back(TextColumn(u"Attributes", 1024));
    return true;
}

}  // namespace DataProviders
