#pragma once

#include <memory>
#include <vector>

#include "core/row_set.h"
#include "storages/connection_settings.h"
#include "storages/sql_dialect.h"
#include "storages/storage_database.h"

namespace DataConsumers {

// Makes the tables that a load lacks, and takes them back when it fails.
class TableMaker {
public:
    // database: of the load. Where making a table would end its transaction, a connection of its
    // own is used.
    TableMaker(DataStorages::StorageDatabase& database,
               const DataStorages::ConnectionSettings& connection, const sql::SqlDialect& dialect)
        : database_(database), connection_(connection), dialect_(dialect) {}
    ~TableMaker();
    TableMaker(const TableMaker&) = delete;
    TableMaker& operator=(const TableMaker&) = delete;

    // Makes a table for the included columns of `rows`. Fails with the database's message.
    bool Make(String& error, const sql::TableName& name, const RowSet& rows);
    // Drops what was made and is still there, once the load's transaction has been taken back.
    void Drop();
    // Keeps what was made.
    void Keep() { made_.clear(); }

private:
    DataStorages::StorageDatabase* Maker(String& error);

    DataStorages::StorageDatabase& database_;
    const DataStorages::ConnectionSettings connection_;
    const sql::SqlDialect& dialect_;
    std::unique_ptr<DataStorages::StorageDatabase> own_;
    std::vector<String> made_;  // names as statements write them
};

}  // namespace DataConsumers
