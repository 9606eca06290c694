#include "providers/odbc_data_sources.h"

#include "storages/odbc_environment.h"

namespace DataProviders {
namespace {

constexpr KeyTable kKeys({
    {.name = u"Driver",
     .kind = KeyKind::Flag,
     .edition1 = u"1",
     .edition2 = u"1",
     .meaning = u"a column with the driver"},
    {.name = u"User",
     .kind = KeyKind::Flag,
     .edition1 = u"1",
     .edition2 = u"1",
     .meaning = u"list the names of the user"},
    {.name = u"System",
     .kind = KeyKind::Flag,
     .edition1 = u"1",
     .edition2 = u"1",
     .meaning = u"list the names of the machine"},
    {.name = u"ShowType",
     .kind = KeyKind::Flag,
     .edition1 = u"1",
     .edition2 = u"1",
     .meaning = u"a column that tells user's from machine's"},
});
constexpr Key kDriver = kKeys[u"Driver"];
constexpr Key kUser = kKeys[u"User"];
constexpr Key kSystem = kKeys[u"System"];
constexpr Key kShowType = kKeys[u"ShowType"];

}  // namespace

KeyList ODBCDataSources::Keys() { return {kKeys}; }

using DataStorages::TableEntry;

bool ODBCDataSources::Open(String& error, const SectionSettings& settings, RowSet& rows) {
    Clear();
    const bool with_driver = settings.Flag(kDriver);
    const bool of_user = settings.Flag(kUser);
    const bool of_system = settings.Flag(kSystem);
    const bool with_type = settings.Flag(kShowType);
    std::vector<TableEntry> sources;
    if (!DataStorages::ODBCEnvironment().DataSources(error, of_system, of_user, sources))
        return false;
    for (const TableEntry& source : sources) {
        Values values{source.Name};
        if (with_type) values.emplace_back(source.Flag == 1 ? u"System" : u"User");
        if (with_driver) values.push_back(source.Detail);
        Add(std::move(values));
    }
    rows.Columns = {TextColumn(u"DataSource", 256)};
    if (with_type) rows.Columns.push_back(TextColumn(u"Type", 8));
    if (with_driver) rows.Columns.push_back(TextColumn(u"Driver", 16));
    return true;
}

}  // namespace DataProviders
