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
    static KeyList Keys();

    // "The database type or connection type is not supported yet"
    // "Could not parse name '%s'"
    // The database's own messages; after a failed query the query text follows on its own line.
    // Without a text where there is no table.
    bool Open(String& error, const SectionSettings& settings, RowSet& rows) override;
    // Describes the first table.
    bool Describe(String& error, const SectionSettings& settings, RowSet& rows) override;
    bool Fetch(String& error, RowSet& rows, bool track_widths) override;
    // Goes on to the next table. One that cannot be read ends the rows, is left out with a notice,
    // or fails the step, as `MissingTables` says.
    bool HasMoreData(String& error, RowSet& rows) override;

private:
    enum class MissingTables { End, Skip, Stop };

    bool ListTables(String& error, const String& names);
    bool OpenList(String& error, const SectionSettings& settings);
    // The query for a table, whose names are then those of the row set and the macros.
    String NameNext(const DataStorages::TableEntry& table, RowSet& rows);
    bool SelectTable(String& error, const DataStorages::TableEntry& table, RowSet& rows);

    std::optional<SectionSettings> settings_;
    std::vector<DataStorages::TableEntry> tables_;
    std::size_t next_ = 0;
    MissingTables missing_tables_ = MissingTables::End;
    String quote_ = u"\"";  // around names in the queries
};

}  // namespace DataProviders
