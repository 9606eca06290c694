#include "providers/odbc_data_sources.h"

#include "storages/odbc_environment.h"

namespace DataProviders {

using DataStorages::TableEntry;

bool ODBCDataSources::Open(String& error, const SectionSettings& settings, RowSet& rows) {
    Clear();
    const bool with_driver = settings.Flag(u"Driver", true);
    const bool of_user = settings.Flag(u"User", true);
    const bool of_system = settings.Flag(u"System", true);
    const bool with_type = settings.Flag(u"ShowType", true);
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
