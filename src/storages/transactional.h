#pragma once

#include "base/strings.h"

namespace DataStorages {

// What a transaction of a database can take back: nothing, rows, or tables that are made, too.
enum class TransactionKind { None, Rows, All };

// The transactions of a connection. Each statement is one after it has been opened. All fail with
// the database's message.
class Transactional {
public:
    virtual ~Transactional() = default;

    virtual TransactionKind Transactions() const = 0;
    // From now on all that is executed belongs to a transaction, until Commit or Rollback end it
    // and begin the next one.
    virtual bool BeginTransactions(String& error) = 0;
    // From now on each statement is a transaction again.
    virtual bool EndTransactions(String& error) = 0;
    virtual bool Commit(String& error) = 0;
    virtual bool Rollback(String& error) = 0;
    // Marks a place in the transaction, takes the mark away, or goes back to it and takes it away.
    virtual bool SetSavepoint(String& error) = 0;
    virtual bool ReleaseSavepoint(String& error) = 0;
    virtual bool RollbackToSavepoint(String& error) = 0;
    // Whether the driver knows that the connection is gone, after a failure.
    virtual bool IsConnectionLost() const = 0;
};

}  // namespace DataStorages
