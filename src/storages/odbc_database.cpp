#include "storages/odbc_database.h"

#include "base/utf8.h"
#include "files/format.h"
#include "platform/driver_library.h"
#include "storages/odbc_calls.h"
#include "storages/odbc_columns.h"

namespace DataStorages {
namespace {

constexpr std::size_t kMessageCharacters = 512;
constexpr std::size_t kStateCharacters = 5;
constexpr std::size_t kLastErrorCharacters = 543;
constexpr std::size_t kConnectOutputCharacters = 388;
constexpr std::int32_t kValueBufferBytes = 16'777'216;

}  // namespace

ODBCDatabase::ODBCDatabase() : value_buffer_(kValueBufferBytes) {}

ODBCDatabase::~ODBCDatabase() { ODBCDatabase::Close(); }

void ODBCDatabase::StoreDiagnostic() {
    std::array<char16_t, kMessageCharacters> message{};
    std::array<char16_t, kStateCharacters + 1> state{};
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    SQLErrorW(environment_.Get(), connection_.Get(), statement_.Get(), odbc::Wide(state.data()),
              &native, odbc::Wide(message.data()), odbc::LengthOf(message), &length);
    message.back() = state.back() = u'\0';
    last_error_ = Format(u"%s,%s,%d", odbc::TextOf(message), odbc::TextOf(state), native);
    if (last_error_.size() > kLastErrorCharacters) last_error_.resize(kLastErrorCharacters);
}

// ---- Connecting ----

bool ODBCDatabase::Open(String& error, const String& source, const String& login,
                        const String& password) {
    Close();
    if (environment_.Get() != nullptr) {
        connection_ = ODBCHandle(ODBCHandle::Kind::Connection, environment_.Get());
        if (!connection_) StoreDiagnostic();
    }
    if (!connection_) {
        error =
            Format(u"ODBCDatabase::Open. Connection handle allocation failed: '%s'", last_error_);
        return false;
    }
    connected_ = Connect(error, source, login, password);
    if (!connected_) connection_.Reset();
    return connected_;
}

bool ODBCDatabase::Connect(String& error, const String& source, const String& login,
                           const String& password) {
    const bool narrow = environment_.MustConnectNarrow(source, login, password);
    const bool by_string = IsConnectString(source);
    if (by_string ? ConnectByString(source, narrow)
                  : ConnectByName(source, login, password, narrow)) {
        const String driver = odbc::InfoText(connection_.Get(), SQL_DRIVER_NAME);
        narrow_driver_ = !platform::DriverTakesWideText(driver);
        return true;
    }
    StoreDiagnostic();
    error = by_string ? Format(u"ODBCDatabase::Open. Connection with string '%s' failed: '%s'",
                               source, last_error_)
                      : Format(u"ODBCDatabase::Open. Connection to '%s' for '%s' failed: '%s'",
                               source, login, last_error_);
    return false;
}

bool ODBCDatabase::ConnectByString(const String& connect_string, bool narrow) {
    SQLSMALLINT length = 0;
    if (narrow) {
        std::string bytes = ToNativeBytes(connect_string);
        std::array<SQLCHAR, kConnectOutputCharacters> completed{};
        return odbc::Succeeded(SQLDriverConnect(
            connection_.Get(), nullptr, odbc::Bytes(bytes), SQL_NTS, completed.data(),
            odbc::LengthOf(completed), &length, SQL_DRIVER_NOPROMPT));
    }
    std::array<char16_t, kConnectOutputCharacters> completed{};
    return odbc::Succeeded(SQLDriverConnectW(
        connection_.Get(), nullptr, odbc::Wide(connect_string), SQL_NTS,
        odbc::Wide(completed.data()), odbc::LengthOf(completed), &length, SQL_DRIVER_NOPROMPT));
}

// The lengths spare unixODBC a count of its own, which runs past the end of short wide texts.
bool ODBCDatabase::ConnectByName(const String& name, const String& login, const String& password,
                                 bool narrow) {
    if (narrow) {
        std::string bytes[] = {ToNativeBytes(name), ToNativeBytes(login), ToNativeBytes(password)};
        return odbc::Succeeded(SQLConnect(connection_.Get(), odbc::Bytes(bytes[0]),
                                          odbc::LengthOf(bytes[0]), odbc::Bytes(bytes[1]),
                                          odbc::LengthOf(bytes[1]), odbc::Bytes(bytes[2]),
                                          odbc::LengthOf(bytes[2])));
    }
    return odbc::Succeeded(SQLConnectW(connection_.Get(), odbc::Wide(name), odbc::LengthOf(name),
                                       odbc::Wide(login), odbc::LengthOf(login),
                                       odbc::Wide(password), odbc::LengthOf(password)));
}

// A driver without quotes around names tells a blank (ODBC reference, SQLGetInfo).
String ODBCDatabase::IdentifierQuote() const {
    const String quote = odbc::InfoText(connection_.Get(), SQL_IDENTIFIER_QUOTE_CHAR);
    return quote == u" " ? String{} : quote;
}

bool ODBCDatabase::CloseQuery() {
    reader_.reset();
    statement_.Reset();
    query_active_ = false;
    return true;
}

bool ODBCDatabase::Close() {
    CloseQuery();
    if (connection_) SQLDisconnect(connection_.Get());
    connection_.Reset();
    connected_ = false;
    return true;
}

// ---- Statements ----

// A statement that an earlier call left open is not freed here: disconnecting does that.
bool ODBCDatabase::AllocateStatement() {
    reader_.reset();
    statement_.Release();
    statement_ = ODBCHandle(ODBCHandle::Kind::Statement, connection_.Get());
    if (!statement_) StoreDiagnostic();
    return static_cast<bool>(statement_);
}

bool ODBCDatabase::PrepareStatement(String& error, const String& statement) {
    if (!connected_) {
        error = u"ODBCDatabase::Query the database connection is not established yet.";
        return false;
    }
    if (statement.empty()) {
        error = u"ODBCDatabase::Query the empty query was passed.";
        return false;
    }
    if (AllocateStatement()) return true;
    error = Format(u"ODBCDatabase::Query could not allocate a statement: %s", last_error_);
    return false;
}

bool ODBCDatabase::Execute(const String& statement) {
    if (!narrow_driver_ || !odbc::SpoiltByNarrowing(statement)) {
        return odbc::SucceededOrNoData(
            SQLExecDirectW(statement_.Get(), odbc::Wide(statement), SQL_NTS));
    }
    std::string bytes = ToUtf8(statement);
    return odbc::SucceededOrNoData(SQLExecDirect(statement_.Get(), odbc::Bytes(bytes), SQL_NTS));
}

bool ODBCDatabase::Prepare(const String& statement) {
    if (!narrow_driver_ || !odbc::SpoiltByNarrowing(statement)) {
        return odbc::Succeeded(SQLPrepareW(statement_.Get(), odbc::Wide(statement), SQL_NTS));
    }
    std::string bytes = ToUtf8(statement);
    return odbc::Succeeded(SQLPrepare(statement_.Get(), odbc::Bytes(bytes), SQL_NTS));
}

bool ODBCDatabase::Query(String& error, const String& statement, RowSet& rows) {
    if (!PrepareStatement(error, statement)) return false;
    query_active_ = false;
    if (!Execute(statement)) {
        StoreDiagnostic();
        error = u"ODBCDatabase::Query execution error: " + last_error_;
        return false;
    }
    reading_failed_ = false;
    DescribeResult(rows);
    query_active_ = true;
    return true;
}

bool ODBCDatabase::Describe(String& error, const String& statement, RowSet& rows) {
    if (!PrepareStatement(error, statement)) return false;
    if (!Prepare(statement)) {
        StoreDiagnostic();
        error = u"ODBCDatabase::Query execution error: " + last_error_;
        return false;
    }
    SQLSMALLINT count = 0;
    // Some drivers ask the database only now.
    if (!odbc::Succeeded(SQLNumResultCols(statement_.Get(), &count))) {
        StoreDiagnostic();
        error = u"ODBCDatabase::Query execution error: " + last_error_;
        return false;
    }
    DescribeColumns(statement_.Get(), rows.Columns);
    return CloseQuery();
}

bool ODBCDatabase::ExecNonQuery(String& error, const String& statement) {
    if (!PrepareStatement(error, statement)) return false;
    if (Execute(statement)) return CloseQuery();
    StoreDiagnostic();
    error = Format(u"ODBCDatabase::ExecNonQuery execution error: %s", last_error_);
    return false;
}

// ---- Rows ----

// True when a call has moved to the next row or result. Its failure counts as the end; what the
// driver said of it is kept.
bool ODBCDatabase::RecordMove(std::int16_t result) {
    // A statement that returns no rows has no cursor to move: no failure either.
    reading_failed_ = column_count_ != 0 && !odbc::SucceededOrNoData(result);
    if (reading_failed_) StoreDiagnostic();
    return odbc::Succeeded(result);
}

void ODBCDatabase::DescribeResult(RowSet& rows) {
    column_count_ = DescribeColumns(statement_.Get(), rows.Columns);
    reader_ =
        MakeRowReader(method_, connection_.Get(), statement_.Get(), rows.Columns, value_buffer_);
}

bool ODBCDatabase::Fetch(String& error, RowSet& rows, bool track_widths) {
    if (!query_active_ || !RecordMove(reader_->Next())) return false;
    const auto count = static_cast<std::uint16_t>(column_count_);
    rows.GrowRow(count);
    for (std::uint16_t i = 0; i < count; ++i) {
        DataValue& value = rows.Row[i];
        if (!reader_->Read(i, value)) {
            StoreDiagnostic();
            error = last_error_;
            return false;
        }
        if (!track_widths || value.IsNull) continue;
        if (i >= rows.Columns.size()) {
            error = u"ODBCDatabase::Fetch. Wrong 'definitions' array size.";
            return false;
        }
        rows.Columns[i].RaiseMaxWidth(value.Text.size());
    }
    return true;
}

bool ODBCDatabase::HasMoreData(String& error, RowSet& rows) {
    if (!statement_) {
        error = u"ODBCDatabase::HasMoreData no active statement";
        return false;
    }
    if (!RecordMove(SQLMoreResults(statement_.Get()))) return false;
    reader_.reset();
    DescribeResult(rows);
    return true;
}

// ---- Catalogue ----

ODBCCatalogue ODBCDatabase::Catalogue() {
    return {connection_.Get(), statement_.Get(), narrow_driver_, value_buffer_};
}

bool ODBCDatabase::Tables(String& error, std::vector<TableEntry>& tables, TableKind kind) {
    if (!connected_) {
        error = u"ODBCDatabase::Tables. The database connection is not established yet.";
        return false;
    }
    tables.clear();
    if (!AllocateStatement()) return false;
    const bool listed = Catalogue().ListTables(tables, kind);
    if (!listed) {
        StoreDiagnostic();
        error = Format(u"ODBCDatabase::Tables. Tables list error: %s", last_error_);
    }
    return CloseQuery() && listed;
}

bool ODBCDatabase::Columns(String& error, const String& schema, const String& table,
                           std::vector<CatalogColumn>& columns) {
    if (!connected_) {
        error = u"The database connection is not established yet.";
        return false;
    }
    columns.clear();
    if (!AllocateStatement()) {
        error = u"Could not allocate statement handle";
        return false;
    }
    const bool listed = Catalogue().ListColumns(schema, table, columns);
    if (!listed) {
        StoreDiagnostic();
        error = Format(u"Table's column list error: %s", last_error_);
    }
    return CloseQuery() && listed;
}

}  // namespace DataStorages
