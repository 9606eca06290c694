#pragma once

#include <memory>

#include "consumers/data_consumer.h"
#include "storages/storage_database.h"

namespace DataConsumers {

// Puts a create table statement together from rows that describe columns, while connected to a
// database. The statement is not executed.
class DatabaseSchema final : public DataConsumer {
public:
    static KeyList Keys();

    ~DatabaseSchema() override;

    // "The data source name or connect string is not provided", or the database's own messages.
    bool Open(String& error, const SectionSettings& settings) override;
    // Always false, without a text.
    bool Prepare(String& error, RowSet& rows) override;
    bool Write(String& error, RowSet& rows) override;
    bool NextResultSet(String& error, const SectionSettings& settings) override;
    bool Close(String& error) override;

    const String& Statement() const { return statement_; }

private:
    std::unique_ptr<DataStorages::StorageDatabase> database_;
    String table_setting_;
    String table_;  // macros replaced
    String delimiter_;
    String statement_;
};

}  // namespace DataConsumers
