#pragma once

#include <vector>

#include "storages/row_sender.h"
#include "storages/storage_database.h"

namespace DataConsumers {

// Sends rows as literals in the text of insert statements. Add fails with "Cound not build SQL
// statement", published spelling, Send with the database's message.
class LiteralRows final : public DataStorages::RowSender {
public:
    LiteralRows(DataStorages::StorageDatabase& database, DataStorages::InsertTarget target);

    bool Fits(const RowSet& /*rows*/) const override { return !IsFull(); }
    bool Add(String& error, const RowSet& rows) override;
    bool IsFull() const override { return count_ >= most_rows_; }
    std::size_t Count() const override { return count_; }
    bool Send(String& error) override;
    bool SendOne(String& error, std::size_t position) override;
    void Clear() override { count_ = 0; }

private:
    DataStorages::StorageDatabase& database_;
    const DataStorages::InsertTarget target_;
    std::size_t most_rows_ = 1;
    std::vector<String> lists_;  // of values, one a row; they keep their room
    std::size_t count_ = 0;
    String statement_;  // reused
};

}  // namespace DataConsumers
