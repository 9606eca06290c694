#include "consumers/table_load.h"

#include <utility>

namespace DataConsumers {

bool TableLoad::Open(String& error, DataStorages::Transactional& database, const Rules& rules) {
    database_ = &database;
    rules_ = rules;
    inserted_ = skipped_ = in_transaction_ = 0;
    is_untouched_ = true;
    failed_row_.reset();
    rejects_.Use(rules.reject_file, rules.most_rejects);
    record_writer_.reset();
    if (rules.bad_row == BadRow::Reject) {
        record_writer_ = FieldWriter::Make({.form = LineLayout::Form::Csv,
                                            .quotation = LineLayout::Quotation::ByValue,
                                            .delimiter = u",",
                                            .quote = u"\"",
                                            .null_text = {},
                                            .widths = {}});
    }
    if (!InTransaction()) return true;
    if (database.Transactions() == DataStorages::TransactionKind::None) {
        error = u"The database knows no transactions: set CommitRows=1.";
        return false;
    }
    open_ = database.BeginTransactions(error);
    return open_;
}

void TableLoad::Use(std::unique_ptr<DataStorages::RowSender> sender) {
    sender_ = std::move(sender);
    gathered_.clear();
}

// ---- Rows ----

TableLoad::Gathered TableLoad::Noted(const RowSet& rows) const {
    Gathered noted{.origin = {rows.Number, rows.Line}, .record = {}};
    String none;
    if (record_writer_) record_writer_->AppendValues(none, rows, noted.record);
    return noted;
}

bool TableLoad::Add(String& error, const RowSet& rows) {
    failed_row_.reset();
    if (!sender_->Fits(rows) && !SendGathered(error)) return false;
    Gathered row = Noted(rows);
    // Rows in front of one that is refused reach the database first.
    if (!sender_->Add(error, rows)) {
        String refusal = std::exchange(error, {});
        if (!SendGathered(error)) return false;
        error = std::move(refusal);
        return Refuse(error, row);
    }
    gathered_.push_back(std::move(row));
    const bool ends_transaction =
        rules_.commit_rows > 1 && in_transaction_ + sender_->Count() >= rules_.commit_rows;
    return !(sender_->IsFull() || ends_transaction) || SendGathered(error);
}

bool TableLoad::Send(String& error) {
    failed_row_.reset();
    return SendGathered(error);
}

// ---- Places to come back to ----

// A transaction in which nothing has happened is taken back as a whole: PostgreSQL's driver does so
// by itself when its first statement fails, savepoint or not.
bool TableLoad::MarkPlace(String& error) {
    return !InTransaction() || is_untouched_ || database_->SetSavepoint(error);
}

bool TableLoad::LeavePlace(String& error) {
    if (!InTransaction()) return true;
    return std::exchange(is_untouched_, false) || database_->ReleaseSavepoint(error);
}

bool TableLoad::ComeBack(String& error) {
    if (!InTransaction()) return true;
    if (!is_untouched_) return database_->RollbackToSavepoint(error);
    const bool back = database_->Rollback(error);
    if (sender_) sender_->TransactionEnded();
    return back;
}

// ---- Sending ----

// A single row needs no place to come back to where its failure ends the step.
bool TableLoad::SendGathered(String& error) {
    if (!sender_ || sender_->Count() == 0) return true;
    const std::size_t rows = sender_->Count();
    const bool comes_back = rows > 1 || rules_.bad_row != BadRow::Stop;
    if (comes_back && !MarkPlace(error)) return false;
    bool sent = sender_->Send(error);
    if (sent) {
        if (comes_back) sent = LeavePlace(error);
        is_untouched_ = false;
        sent = sent && NoteSent(error, rows);
    } else {
        sent = SendOneByOne(error, comes_back);
    }
    sender_->Clear();
    gathered_.clear();
    return sent;
}

// comes_back: to the place in front of the rows that have just been refused
bool TableLoad::SendOneByOne(String& error, bool comes_back) {
    String lost;
    if (comes_back && !ComeBack(lost)) {
        error = std::move(lost);
        return false;
    }
    if (database_->IsConnectionLost()) return false;
    const std::size_t rows = sender_->Count();
    for (std::size_t i = 0; i < rows; ++i) {
        // A row alone has failed already.
        const Sent sent = rows == 1 ? Sent::Refused : SendAgain(error, i);
        if (sent == Sent::Lost) return false;
        if (sent == Sent::Refused && !Refuse(error, gathered_[i])) return false;
        if (sent == Sent::Done && !NoteSent(error, 1)) return false;
    }
    return true;
}

TableLoad::Sent TableLoad::SendAgain(String& error, std::size_t position) {
    error.clear();
    const bool comes_back = rules_.bad_row != BadRow::Stop;
    if (comes_back && !MarkPlace(error)) return Sent::Lost;
    if (sender_->SendOne(error, position)) {
        const bool left = !comes_back || LeavePlace(error);
        is_untouched_ = false;
        return left ? Sent::Done : Sent::Lost;
    }
    if (!comes_back) return Sent::Refused;
    String lost;
    if (ComeBack(lost)) return Sent::Refused;
    error = std::move(lost);
    return Sent::Lost;
}

// Leaves a row out, sets it aside, or fails. `error` says why it is refused.
bool TableLoad::Refuse(String& error, const Gathered& row) {
    failed_row_ = row.origin;
    if (rules_.bad_row == BadRow::Stop) return false;
    if (rules_.bad_row == BadRow::Skip) {
        ++skipped_;
    } else {
        const String reason = std::exchange(error, {});
        const std::uint64_t place = row.origin.line != 0 ? row.origin.line : row.origin.number;
        if (!rejects_.Add(error, place, reason, row.record)) return false;
    }
    error.clear();
    failed_row_.reset();
    return true;
}

bool TableLoad::NoteSent(String& error, std::size_t rows) {
    inserted_ += rows;
    if (rules_.commit_rows <= 1) return true;
    in_transaction_ += rows;
    if (in_transaction_ < rules_.commit_rows) return true;
    in_transaction_ = 0;
    if (!database_->Commit(error)) return false;
    is_untouched_ = true;
    sender_->TransactionEnded();
    return true;
}

// ---- The end ----

bool TableLoad::Commit(String& error) {
    sender_.reset();
    if (open_ && !database_->Commit(error)) return false;
    open_ = false;
    return rejects_.Close(error);
}

void TableLoad::Rollback() {
    sender_.reset();
    String ignored;
    if (open_) database_->Rollback(ignored) && database_->EndTransactions(ignored);
    open_ = false;
    rejects_.Close(ignored);
}

}  // namespace DataConsumers
