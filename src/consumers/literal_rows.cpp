#include "consumers/literal_rows.h"

#include <algorithm>

#include "consumers/sql_statement.h"

namespace DataConsumers {

LiteralRows::LiteralRows(DataStorages::StorageDatabase& database, DataStorages::InsertTarget target)
    : database_(database), target_(std::move(target)) {
    most_rows_ = std::max<std::size_t>(target_.rows, 1);
    if (target_.most_rows != 0) most_rows_ = std::min(most_rows_, target_.most_rows);
}

bool LiteralRows::Add(String& error, const RowSet& rows) {
    if (lists_.size() == count_) lists_.emplace_back();
    String& list = lists_[count_];
    list.clear();
    if (!sql::AppendValueList(error, list, rows.Columns, rows.Row)) return false;
    ++count_;
    return true;
}

bool LiteralRows::Send(String& error) {
    if (count_ == 0) return true;
    statement_ = target_.head;
    for (std::size_t i = 0; i < count_; ++i) {
        if (i != 0) statement_ += u',';
        statement_ += lists_[i];
    }
    statement_ += target_.end;
    return database_.ExecNonQuery(error, statement_);
}

bool LiteralRows::SendOne(String& error, std::size_t position) {
    return database_.ExecNonQuery(error, target_.head + lists_[position] + target_.end);
}

}  // namespace DataConsumers
