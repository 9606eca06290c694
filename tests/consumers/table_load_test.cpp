#include "consumers/table_load.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "base/utf8.h"

namespace {

using DataConsumers::TableLoad;
using DataStorages::TransactionKind;

// Notes what is asked of it: "b" and "e" for the begin and end of transactions, "c" and "r" for
// their fate, "(" sets a place, ")" leaves it and "<" goes back to it.
class Notebook final : public DataStorages::Transactional {
public:
    TransactionKind Transactions() const override { return kind; }
    bool BeginTransactions(String&) override { return Note('b'); }
    bool EndTransactions(String&) override { return Note('e'); }
    bool Commit(String&) override { return Note('c'); }
    bool Rollback(String&) override { return Note('r'); }
    bool SetSavepoint(String& error) override {
        if (!lost) return Note('(');
        error = u"lost";
        return false;
    }
    bool ReleaseSavepoint(String&) override { return Note(')'); }
    bool RollbackToSavepoint(String&) override { return Note('<'); }

    bool IsConnectionLost() const override { return lost; }

    bool Note(char what) {
        notes += what;
        return true;
    }

    TransactionKind kind = TransactionKind::All;
    bool lost = false;  // the connection, as savepoints find
    std::string notes;
};

// Takes rows of one letter and notes those that arrive, statements in brackets. The table refuses a
// capital, the sender a digit.
class Sender final : public DataStorages::RowSender {
public:
    Sender(Notebook& notebook, std::size_t capacity) : notebook_(notebook), capacity_(capacity) {}

    bool Fits(const RowSet&) const override { return !IsFull(); }
    bool Add(String& error, const RowSet& rows) override {
        const char16_t letter = rows.Row[0].Text[0];
        error = u"digit";
        if (letter < u'A') return false;
        error.clear();
        rows_ += static_cast<char>(letter);
        return true;
    }
    bool IsFull() const override { return rows_.size() >= capacity_; }
    std::size_t Count() const override { return rows_.size(); }
    bool Send(String& error) override { return Arrive(error, rows_); }
    bool SendOne(String& error, std::size_t position) override {
        return Arrive(error, rows_.substr(position, 1));
    }
    void Clear() override { rows_.clear(); }

private:
    bool Arrive(String& error, const std::string& rows) {
        const bool taken =
            std::none_of(rows.begin(), rows.end(), [](char letter) { return letter <= 'Z'; });
        notebook_.notes += taken ? "[" + rows + "]" : "!";
        if (!taken) error = u"capital";
        return taken;
    }

    Notebook& notebook_;
    std::size_t capacity_;
    std::string rows_;
};

struct Ended {
    std::string notes;
    std::string error;
    std::uint64_t failed_row = 0;
};

// Loads the letters of `rows`, each a row.
Ended Load(Notebook& notebook, TableLoad& load, const TableLoad::Rules& rules, std::size_t capacity,
           StringView rows) {
    String error;
    bool good = load.Open(error, notebook, rules);
    if (good) load.Use(std::make_unique<Sender>(notebook, capacity));
    RowSet row;
    row.Columns.resize(1);
    row.GrowRow(1);
    for (std::size_t i = 0; good && i < rows.size(); ++i) {
        row.Number = i + 1;
        row.Row[0].Text = rows.substr(i, 1);
        good = load.Add(error, row);
    }
    good = good && load.Send(error) && load.Commit(error);
    const std::uint64_t failed_row = load.FailedRow() ? load.FailedRow()->number : 0;
    if (!good) load.Rollback();
    return {notebook.notes, ToUtf8(error), failed_row};
}

TEST(TableLoad, KeepsWholeTransactionsAndFindsTheRowAtFault) {
    using enum TableLoad::BadRow;
    const struct {
        const char16_t* rows;
        std::size_t capacity;
        std::uint64_t commit_rows;
        TableLoad::BadRow bad_row;
        const char* notes;
        std::uint64_t failed_row = 0;
        std::uint64_t skipped = 0;
    } kCases[] = {
        {u"abcde", 2, 0, Stop, "b[ab]([cd])[e]c"},
        {u"abcde", 1, 1, Stop, "[a][b][c][d][e]"},
        {u"abcdefg", 2, 3, Stop, "b[ab][c]c[de][f]c[g]c"},
        // Nothing has happened before the first statement, so there is nothing to come back to.
        {u"aBc", 3, 0, Stop, "b!r[a]!re", 2},
        {u"abcDe", 2, 0, Stop, "b[ab](!<[c]!re", 4},
        {u"abcD", 2, 2, Stop, "b[ab]c!r[c]!re", 4},
        {u"ab3d", 3, 0, Stop, "b[ab]re", 3},
        {u"aBc", 1, 1, Stop, "[a]!", 2},
        {u"aBcDe", 3, 0, Skip, "b!r[a](!<([c])(!<(!<([e])c", 0, 2},
        {u"aB3d", 2, 0, Skip, "b!r[a](!<([d])c", 0, 2},
        {u"aBc", 1, 1, Skip, "[a]![c]", 0, 1},
    };
    for (const auto& c : kCases) {
        Notebook notebook;
        TableLoad load;
        const Ended ended = Load(notebook, load,
                                 {.commit_rows = c.commit_rows,
                                  .bad_row = c.bad_row,
                                  .reject_file = {},
                                  .most_rejects = 0},
                                 c.capacity, c.rows);
        const std::string shown = ToUtf8(c.rows);
        EXPECT_EQ(ended.notes, c.notes) << shown;
        EXPECT_EQ(ended.failed_row, c.failed_row) << shown;
        EXPECT_EQ(ended.error.empty(), c.failed_row == 0) << shown;
        EXPECT_EQ(load.Skipped(), c.skipped) << shown;
    }
}

TEST(TableLoad, DoesNotTakeALostConnectionForBadRows) {
    Notebook notebook;
    TableLoad load;
    notebook.lost = true;
    const TableLoad::Rules rules{
        .commit_rows = 0, .bad_row = TableLoad::BadRow::Skip, .reject_file = {}, .most_rejects = 0};
    EXPECT_EQ(Load(notebook, load, rules, 2, u"abCd").error, "lost");
    EXPECT_EQ(load.Skipped(), 0U);
}

TEST(TableLoad, RefusesDatabasesWithoutTransactions) {
    Notebook notebook;
    notebook.kind = TransactionKind::None;
    for (const std::uint64_t commit_rows : {0U, 1U, 5U}) {
        TableLoad load;
        const TableLoad::Rules rules{.commit_rows = commit_rows,
                                     .bad_row = TableLoad::BadRow::Stop,
                                     .reject_file = {},
                                     .most_rejects = 0};
        EXPECT_EQ(Load(notebook, load, rules, 1, u"a").error,
                  commit_rows == 1 ? "" : "The database knows no transactions: set CommitRows=1.");
    }
}

}  // namespace
