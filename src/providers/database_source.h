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
    // The keys of how rows are read.
    static KeySpan ReadingKeys();
    // Connects to another database, in place of the one before, and has its rows read as the
    // section says.
    bool Connect(String& error, const DataStorages::ConnectionSettings& connection,
                 const SectionSettings& settings);
    // Runs a query and describes its columns. After a failure the query text follows the
    // database's message on its own line.
    bool RunQuery(String& error, const String& query, RowSet& rows);
    // Describes the columns that a query would return, without running it. Fails as RunQuery does.
    bool DescribeQuery(String& error, const String& query, RowSet& rows);
    // Notes why reading has ended, where the end of the data was not the reason.
    void NoteLoss(const String& error);

    std::unique_ptr<DataStorages::StorageDatabase> database_;
};

}  // namespace DataProviders
