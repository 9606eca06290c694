#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "consumers/data_consumer.h"
#include "consumers/field_writer.h"
#include "files/reject_file.h"
#include "storages/row_sender.h"
#include "storages/transactional.h"

namespace DataConsumers {

// Loads rows into a database: in statements of several rows, in transactions of several statements.
// A statement that is refused is tried again row by row, so that the row at fault is found, and no
// other suffers.
class TableLoad {
public:
    enum class BadRow { Skip, Stop, Reject };
    struct Rules {
        std::uint64_t commit_rows = 1;  // a transaction; 0: all are one; 1: each statement is one
        BadRow bad_row = BadRow::Stop;
        String reject_file;
        std::uint64_t most_rejects = 0;
    };

    // Begins the first transaction. Fails with "The database knows no transactions: set
    // CommitRows=1." or the database's message.
    bool Open(String& error, DataStorages::Transactional& database, const Rules& rules);
    // What sends the rows from now on. Those of the sender before have been sent.
    void Use(std::unique_ptr<DataStorages::RowSender> sender);

    // Takes the current row; it may be sent later, with others. Fails with the database's message,
    // and RowSender's; with those of RejectFile where rows are set aside.
    bool Add(String& error, const RowSet& rows);
    // Sends what is gathered.
    bool Send(String& error);
    // Makes all that was sent final, and the reject file whole.
    bool Commit(String& error);
    // Takes back what is not final. Harmless after Commit.
    void Rollback();

    // Marks a place in the transaction; what follows it is kept, or taken back. Without
    // transactions these do nothing.
    bool MarkPlace(String& error);
    bool LeavePlace(String& error);
    bool ComeBack(String& error);

    bool InTransaction() const { return rules_.commit_rows != 1; }
    // The row that the last failure is about.
    const std::optional<RowOrigin>& FailedRow() const { return failed_row_; }
    std::uint64_t Inserted() const { return inserted_; }
    std::uint64_t Skipped() const { return skipped_; }
    std::uint64_t Rejected() const { return rejects_.Count(); }

private:
    struct Gathered {
        RowOrigin origin;
        String record;  // as the reject file shows it; empty where there is none
    };

    enum class Sent { Done, Refused, Lost };

    bool SendGathered(String& error);
    bool SendOneByOne(String& error, bool comes_back);
    Sent SendAgain(String& error, std::size_t position);
    bool Refuse(String& error, const Gathered& row);
    bool NoteSent(String& error, std::size_t rows);
    Gathered Noted(const RowSet& rows) const;

    DataStorages::Transactional* database_ = nullptr;
    Rules rules_;
    std::unique_ptr<DataStorages::RowSender> sender_;
    std::unique_ptr<FieldWriter> record_writer_;  // where rows are set aside
    RejectFile rejects_;
    std::vector<Gathered> gathered_;  // one for each row of the sender
    std::optional<RowOrigin> failed_row_;
    std::uint64_t in_transaction_ = 0;  // rows
    std::uint64_t inserted_ = 0;
    std::uint64_t skipped_ = 0;
    bool open_ = false;         // a transaction
    bool is_untouched_ = true;  // nothing has happened in it
};

}  // namespace DataConsumers
