#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "consumers/file_target.h"
#include "consumers/statement_form.h"

namespace DataConsumers {

// Writes the rows as insert statements, or, for the type "DDLScript", takes each row as the
// description of a column and writes a create table statement. A row that brings nested row sets is
// a table with its schema, and they are its columns; it gets a statement of its own.
// The statements are plain or in a dialect; see StatementForm.
//
//     insert into "Orders"("Id","Name") values (1,'O''Brien'),
//        (2,NULL);
//
//     create table "Orders" (
//      Id integer not null,
//      Name varchar(40) null);
//
// Open fails with "Output table name is not provided.", Write with "Cound not build SQL statement"
// for a row that does not have its columns.
class SQLScript final : public FileTarget {
public:
    enum class Statement { Insert, CreateTable };
    static KeyList InsertKeys();
    static KeyList CreateTableKeys();

    explicit SQLScript(Statement statement)
        : FileTarget({.overwrite = kOverwrite, .encoding = kEncoding}), statement_(statement) {}

    // Takes the table and the columns for the rows that follow.
    bool Prepare(String& error, RowSet& rows) override;
    bool Write(String& error, RowSet& rows) override;

private:
    bool ReadSettings(String& error, const SectionSettings& settings) override;
    StringView LineEnd() const override { return u"\r\n"; }
    bool BeginFile(String& error) override;
    bool ContinueFile(String& error) override;
    bool EndFile(String& error) override;

    bool WriteRow(String& error, const RowSet& rows);
    bool WriteTable(String& error, const RowSet& rows);
    bool EndStatement(String& error);

    const Statement statement_;
    std::optional<sql::TableSetting> table_;
    std::unique_ptr<sql::StatementForm> form_;
    String delimiter_;
    std::int64_t batch_size_ = 1;
    bool column_list_ = false;

    bool prepare_pending_ = false;
    std::int64_t rows_in_batch_ = 0;  // in line_, the statement that is being put together
    bool whole_tables_ = false;       // the rows are tables that bring their columns along
};

}  // namespace DataConsumers
