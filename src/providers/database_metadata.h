#pragma once

#include <vector>

#include "providers/collected_source.h"
#include "storages/storage_database.h"

namespace DataProviders {

// Delivers the structure of a database: the columns of one table or view, or the list of all
// tables or views. Everything is read in Open.
//
// Rows of a table or view: Table, Column, TypeName, Size, Digits, IsNullable, Default.
// Rows of a list: Table, Schema. With `WithColumns` the columns of the table travel with its row,
// as the row set's nested row sets: each has the seven columns above and one row. What the
// catalogue says beside these values travels in RowSet::Described.
class DatabaseMetadata final : public CollectedSource {
public:
    static KeyList Keys();

    // "The database type or connection type is not supported yet"
    // "'Name' parameter is mandatory for table.", "'Name' parameter is mandatory for view."
    // "Could not retrieve list of columns. Schema='%s',Table='%s'"
    // "Object type '%s' is not supported yet."
    // and the database's own messages.
    bool Open(String& error, const SectionSettings& settings, RowSet& rows) override;
    bool Fetch(String& error, RowSet& rows, bool track_widths) override;

private:
    using Columns = std::vector<DataStorages::CatalogColumn>;

    bool Collect(String& error, const SectionSettings& settings,
                 DataStorages::StorageDatabase& database, RowSet& rows);
    bool CollectColumns(String& error, const SectionSettings& settings, StringView kind,
                        DataStorages::StorageDatabase& database, RowSet& rows);
    bool CollectTables(String& error, DataStorages::TableKind kind, bool with_columns,
                       DataStorages::StorageDatabase& database, RowSet& rows);

    Columns columns_;  // of the one table
    std::size_t next_column_ = 0;
    std::vector<Columns> columns_of_tables_;  // of each table of the list; empty without them
    std::size_t next_table_ = 0;
};

}  // namespace DataProviders
