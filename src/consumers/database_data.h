#pragma once

#include <memory>

#include "consumers/data_consumer.h"
#include "storages/storage_database.h"

namespace DataConsumers {

// Inserts each row into a table of a database, one statement a row. The written size counts rows.
class DatabaseData final : public DataConsumer {
public:
    static KeyList Keys();

    ~DatabaseData() override;

    // "The data source name or connect string is not provided"
    // "The target table name is not provided"
    // "Could not retrieve table defintition" where the table cannot be read; published spelling
    // and the database's own messages.
    bool Open(String& error, const SectionSettings& settings) override;
    bool Prepare(String& error, RowSet& rows) override;
    // "Traget table has different structure [%d -> %d columns]." with the columns of the source
    // and of the table, published spelling; "Cound not build SQL statement"; or the database's
    // message. Earlier rows stay.
    bool Write(String& error, RowSet& rows) override;
    // Always false: the rows of a further result set go into the same table.
    bool NextResultSet(String& error, const SectionSettings& settings) override;
    bool Close(String& error) override;
    // "Traget table has different structure [%d -> %d columns]." likewise; no row is touched.
    bool CheckColumns(String& error, const SectionSettings& settings, const RowSet& rows) override;

private:
    bool Connect(String& error, const SectionSettings& settings);
    bool ColumnsFit(String& error, const RowSet& rows) const;

    std::unique_ptr<DataStorages::StorageDatabase> database_;
    String table_;
    String delimiter_;
    RowSet table_rows_;  // describes the table
    String prefix_;      // of the insert statements; made with the first row
    String statement_;   // reused
};

}  // namespace DataConsumers
