#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "providers/database_source.h"

namespace DataProviders {

// Delivers several tables of a database whole, each as a result set of its own. The table's name is
// in the row set and in the step's macro "$TABLE$" before its rows flow.
class DatabaseContent final : public DatabaseSource {
public:
    // "The database type or connection type is not supported yet"
    // "Could not parse name '%s'"
    // The database's own messages; after a failed query the query text follows on its own line.
    // Without a text where there is no table.
    bool Open(String& error, const SectionSettings& settings, RowSet& rows) override;
    // Goes on to the next table. Fails as its query does; the tables behind it are then not read.
    bool HasMoreData(String& error, RowSet& rows) override;

private:
    bool ListTables(String& error, const String& names);

    std::optional<SectionSettings> settings_;
    std::vector<DataStorages::TableEntry> tables_;
    std::size_t next_ = 0;
    String quote_ = u"\"";  // around names in the queries
};

}  // namespace DataProviders
