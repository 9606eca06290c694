#pragma once

#include <memory>

#include "providers/data_provider.h"
#include "storages/open_database.h"

namespace DataProviders {

// What the sources share that read rows from a database: the connection, fetching, and telling of
// failures that count as the end of the data.
class DatabaseSource : public DataProvider {
public:
    ~DatabaseSource() override;

    // A failure of the driver ends the data; standard error then says
    // "Warning: reading from the database failed: %s".
    bool Fetch(String& error, RowSet& rows, bool track_widths) override;
    bool Close() override;

protected:
    // Connects to another database, in place of the one before.
    bool Connect(String& error, const DataStorages::ConnectionSettings& connection);
    // Runs a query and describes its columns. After a failure the query text follows the
    // database's message on its own line.
    bool RunQuery(String& error, const String& query, RowSet& rows);
    // Tells standard error that reading ended before its time. A step takes that for the end of
    // the data; whoever watches the job must be able to find out.
    static void TellOfLostRows(const String& reason);
    // The same, where the database met a failure that it took for the end.
    void TellOfLostRows() const;

    std::unique_ptr<DataStorages::StorageDatabase> database_;
};

}  // namespace DataProviders
