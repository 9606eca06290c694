#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "base/strings.h"
#include "core/row_set.h"

namespace DataStorages {

// Rows on their way into a table: gathered, and sent with one statement.
class RowSender {
public:
    virtual ~RowSender() = default;

    // Whether a row can join those that are gathered. Any row can where none is.
    virtual bool Fits(const RowSet& rows) const = 0;
    // Gathers the included values of the current row; they must be as many as the columns that the
    // rows go to. What a value cannot become fails; nothing of the row is then kept.
    virtual bool Add(String& error, const RowSet& rows) = 0;
    // True when the rows should be sent before another one comes, which may be at once.
    virtual bool IsFull() const = 0;
    virtual std::size_t Count() const = 0;

    // Sends all rows that are gathered, or one of them, position from 0. They stay gathered.
    // Fails with the database's message.
    virtual bool Send(String& error) = 0;
    virtual bool SendOne(String& error, std::size_t position) = 0;
    virtual void Clear() = 0;
    // A transaction has ended: some drivers forget then what was prepared.
    virtual void TransactionEnded() {}
};

// What rows are sent to.
struct InsertTarget {
    String head;                            // the statement up to the first row's values
    std::vector<ColumnDefinition> columns;  // those that get values, in the order of the head
    std::size_t rows = 0;                   // a statement; 0: what suits the driver
    std::size_t most_rows = 0;              // not more than these; 0: any number
    String end;                             // what ends the statement
};

}  // namespace DataStorages
