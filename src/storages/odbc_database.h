#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "storages/driver_habits.h"
#include "storages/odbc_catalogue.h"
#include "storages/odbc_environment.h"
#include "storages/odbc_handle.h"
#include "storages/odbc_row_reader.h"
#include "storages/odbc_value_buffer.h"
#include "storages/storage_database.h"

namespace DataStorages {

// A connection through the ODBC driver manager (the ODBC 3 wide-character interface). One
// statement at a time. SQL_SUCCESS_WITH_INFO counts as success everywhere.
// Text beyond ASCII goes as UTF-8 to drivers without wide calls where unixODBC would spoil it.
//
// Where a message below ends in '%s' or a colon, the driver's diagnostic follows: message,
// SQLSTATE and native error number, separated by commas.
class ODBCDatabase final : public StorageDatabase {
public:
    // Allocates the environment and the value buffer.
    ODBCDatabase();
    // Does not disconnect: callers close first.
    ~ODBCDatabase() override;
    ODBCDatabase(const ODBCDatabase&) = delete;
    ODBCDatabase& operator=(const ODBCDatabase&) = delete;

    // source: a connect string when it contains "Driver=" (letter for letter; login and password
    //         belong into it then), else a data source name.
    // "ODBCDatabase::Open. Connection handle allocation failed: '%s'"
    // "ODBCDatabase::Open. Connection with string '%s' failed: '%s'"
    // "ODBCDatabase::Open. Connection to '%s' for '%s' failed: '%s'"
    bool Open(String& error, const String& source, const String& login,
              const String& password) override;

    // After a failure the statement stays until CloseQuery.
    // "ODBCDatabase::Query the database connection is not established yet."
    // "ODBCDatabase::Query the empty query was passed."
    // "ODBCDatabase::Query could not allocate a statement: %s"
    // "ODBCDatabase::Query execution error: "
    bool Query(String& error, const String& statement, RowSet& rows) override;

    // The messages of Query.
    bool Describe(String& error, const String& statement, RowSet& rows) override;
    void ReadBy(const ReadingMethod& method) override { method_ = method; }

    // The first three messages of Query, and "ODBCDatabase::ExecNonQuery execution error: %s".
    bool ExecNonQuery(String& error, const String& statement) override;

    // A failing fetch ends the data without a message, as its end does, see ReadingFailed; a value
    // that cannot be read fails with the driver's diagnostic. Values longer than the buffer are
    // cut unless the method of reading says otherwise. "ODBCDatabase::Fetch. Wrong 'definitions'
    // array size."
    bool Fetch(String& error, RowSet& rows, bool track_widths) override;

    // "ODBCDatabase::HasMoreData no active statement"
    bool HasMoreData(String& error, RowSet& rows) override;

    bool CloseQuery() override;
    bool Close() override;

    // "ODBCDatabase::Tables. The database connection is not established yet."
    // "ODBCDatabase::Tables. Tables list error: %s"
    bool Tables(String& error, std::vector<TableEntry>& tables, TableKind kind) override;

    // "The database connection is not established yet."
    // "Could not allocate statement handle"
    // "Table's column list error: %s"
    bool Columns(String& error, const String& schema, const String& table,
                 std::vector<CatalogColumn>& columns) override;

    std::int16_t ColumnCount() const override { return column_count_; }

    const String& LastError() const override { return last_error_; }
    bool ReadingFailed() const override { return reading_failed_; }
    String IdentifierQuote() const override;
    std::size_t LongestName(Named named) const override;

    String Product() const override;
    TransactionKind Transactions() const override;
    // These fail with the driver's diagnostic, or with what ExecNonQuery says.
    bool BeginTransactions(String& error) override;
    bool EndTransactions(String& error) override;
    bool Commit(String& error) override;
    bool Rollback(String& error) override;
    bool SetSavepoint(String& error) override;
    bool ReleaseSavepoint(String& error) override;
    bool RollbackToSavepoint(String& error) override;
    bool IsConnectionLost() const override;
    std::unique_ptr<RowSender> MakeSender(const InsertTarget& target) override;

private:
    bool Connect(String& error, const String& source, const String& login, const String& password);
    bool ConnectByString(const String& connect_string, bool narrow);
    bool ConnectByName(const String& name, const String& login, const String& password,
                       bool narrow);
    bool PrepareStatement(String& error, const String& statement);
    bool AllocateStatement();
    bool Execute(const String& statement);
    bool DescribeResult(RowSet& rows);
    bool RecordMove(std::int16_t result);
    void StoreDiagnostic();
    ODBCCatalogue Catalogue();
    const DriverHabits& Habits();
    bool SetAutocommit(String& error, std::uint32_t value);
    bool EndTransaction(String& error, std::int16_t how);
    void CorrectColumns(std::vector<ColumnDefinition>& columns);
    bool CharactersAreUtf8();

    bool connected_ = false;
    bool in_transactions_ = false;
    bool narrow_driver_ = false;  // without wide calls
    bool query_active_ = false;
    bool reading_failed_ = false;
    const DriverHabits* habits_ = nullptr;  // of this connection, once they have been asked for
    std::optional<bool> is_utf8_;           // likewise, what CharactersAreUtf8 found
    ODBCEnvironment environment_;
    ODBCHandle connection_;
    ODBCHandle statement_;
    std::int16_t column_count_ = 0;
    ODBCValueBuffer value_buffer_;
    ReadingMethod method_;
    std::unique_ptr<ODBCRowReader> reader_;  // of the current result set; unbinds before it goes
    String last_error_;
};

}  // namespace DataStorages
