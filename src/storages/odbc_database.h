#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "storages/storage_database.h"

namespace DataStorages {

// A connection through the ODBC driver manager (the ODBC 3 wide-character interface). One
// statement at a time. SQL_SUCCESS_WITH_INFO counts as success everywhere.
//
// Where a message below ends in '%s' or a colon, the driver's diagnostic follows: message,
// SQLSTATE and native error number, separated by commas.
class ODBCDatabase final : public StorageDatabase {
public:
    // Allocates the environment and the value buffer.
    ODBCDatabase();
    // Frees the environment. This does not disconnect: callers close first.
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

    // The first three messages of Query, and "ODBCDatabase::ExecNonQuery execution error: %s".
    bool ExecNonQuery(String& error, const String& statement) override;

    // A failing fetch ends the data without a message, as its end does, see ReadingFailed; a value
    // that cannot be read fails with the driver's diagnostic. Values longer than the buffer are
    // cut. "ODBCDatabase::Fetch. Wrong 'definitions' array size."
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

    // What the driver manager knows, without a connection: data source names with their driver
    // (Detail) and whether they belong to the machine (Flag 1) or to the user (Flag 0), in this
    // order; and drivers.
    // "ODBC subsystem is not initialized properly"
    bool DataSources(String& error, bool of_system, bool of_user,
                     std::vector<TableEntry>& sources) const;
    bool Drivers(String& error, std::vector<DriverEntry>& drivers) const;

    std::int16_t ColumnCount() const override { return column_count_; }

    // The driver's diagnostic for the last failure.
    const String& LastError() const { return last_error_; }
    // True when the last Fetch or HasMoreData met a failure that it took for the end of the data.
    bool ReadingFailed() const { return reading_failed_; }

private:
    static constexpr std::int32_t kCatalogBufferBytes = 32'728;
    static constexpr std::int32_t kValueBufferBytes = 16'777'216;

    enum class Value { Failed, Null, Text };

    bool Connect(String& error, const String& source, const String& login, const String& password);
    bool PrepareStatement(String& error, const String& statement);
    bool AllocateStatement();
    String DriverName() const;
    bool MustNarrow(const String& text) const;
    bool Execute(const String& statement);
    bool ListColumns(const String& schema, const String& table);
    void StoreDiagnostic();
    bool MovedOn(std::int16_t result);
    void DescribeColumns(RowSet& rows);
    ColumnDefinition DescribeColumn(std::uint16_t number) const;
    String TextAttribute(std::uint16_t number, std::uint16_t field, bool* refused = nullptr) const;
    std::int64_t NumberAttribute(std::uint16_t number, std::uint16_t field) const;
    Value ReadValue(std::uint16_t number, std::int32_t buffer_bytes, StringView& text);
    String CurrentCatalog() const;
    bool FetchCatalogueRow(bool& failed);
    String ReadCatalogText(std::uint16_t number);
    String SearchPattern(const String& name) const;
    bool HasEnvironment(String& error) const;
    void ListDataSources(std::uint16_t first, std::uint8_t flag,
                         std::vector<TableEntry>& sources) const;

    bool connected_ = false;
    bool narrow_driver_ = false;  // has no wide calls; see MustNarrow
    bool query_active_ = false;
    bool reading_failed_ = false;
    void* environment_ = nullptr;
    void* connection_ = nullptr;
    void* statement_ = nullptr;
    std::int16_t column_count_ = 0;
    std::unique_ptr<char16_t[]> value_buffer_;
    String last_error_;
};

}  // namespace DataStorages
