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

    // A failure of the driver ends the data without an error, but not without a loss; see Loss.
    bool Fetch(String& error, RowSet& rows, bool track_widths) override;
    bool Close() override;

protected:
    // Connects to another database, in place of the one before.
    bool Connect(String& error, const DataStorages::ConnectionSettings& connection);
    // Runs a query and describes its columns. After a failure the query text follows the
    // database's message on its own line.
    bool RunQuery(String& error, const String& query, RowSet& rows);
    // Notes why reading has ended, where the end of the data was not the reason.
    void NoteLoss(const String& error);

    std::unique_ptr<DataStorages::StorageDatabase> database_;
};

}  // namespace DataProviders
