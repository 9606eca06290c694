#pragma once

#include <memory>

#include "providers/data_provider.h"
#include "storages/odbc_database.h"

namespace DataProviders {

// Runs one SQL text against an ODBC data source and delivers its result sets.
class DatabaseQuery final : public DataProvider {
public:
    ~DatabaseQuery() override;

    // "The data source or connection string is not provided."
    // "The database query or table name is not provided."
    // "The query file '%s' does not exist or inaccessible."
    // "Could not load query file '%s': %s"
    // "The query file '%s' is empty"
    // The database's own messages; after a failed query the query text follows on its own line.
    bool Open(String& error, const SectionSettings& settings, RowSet& rows) override;
    // A failure of the driver ends the data; standard error then says
    // "Warning: reading from the database failed: %s".
    bool Fetch(String& error, RowSet& rows, bool track_widths) override;
    bool HasMoreData(String& error, RowSet& rows) override;
    bool Close() override;

private:
    void TellOfLostRows() const;

    std::unique_ptr<DataStorages::ODBCDatabase> database_;
};

}  // namespace DataProviders
