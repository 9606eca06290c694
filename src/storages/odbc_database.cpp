#include "storages/odbc_database.h"

#include "base/utf8.h"
#include "core/column_type.h"
#include "files/format.h"
#include "platform/driver_library.h"
#include "storages/odbc_calls.h"
#include "storages/odbc_columns.h"
#include "storages/odbc_insert.h"

namespace DataStorages {
namespace {

constexpr std::size_t kConnectOutputCharacters = 388;
constexpr std::int32_t kValueBufferBytes = 16'777'216;

// How a database puts savepoints: as SQL:1999 does, or in its own way.
struct SavepointWords {
    const char16_t* set;
    const char16_t* release;  // empty: the next one with the same name replaces it
    const char16_t* roll_back;
};

SavepointWords SavepointWordsOf(StringView product) {
    if (product.starts_with(u"Microsoft SQL Server")) {
        return {u"save transaction quillon", u"", u"rollback transaction quillon"};
    }
    return {u"savepoint quillon", u"release savepoint quillon", u"rollback to savepoint quillon"};
}

// The driver knows the catalogue's size of a number that is the column of a table; of others it
// tells two more digits than it has. Types that it has no name for are "unknown", bits among them.
bool IsGuessedSize(const ColumnDefinition& column) {
    constexpr std::int32_t kUnsizedText = 255;
    constexpr std::int32_t kUnsizedDecimal = 28;
    if (column.TypeName == u"numeric") {
        return column.TableName.empty() && column.Length >= kUnsizedDecimal;
    }
    return column.TypeName == u"unknown" ||
           (column.TypeName == u"varchar" && column.Length == kUnsizedText);
}

// What the driver tells otherwise than it is.
void CorrectColumn(ColumnDefinition& column, const DriverHabits& habits) {
    if (habits.wide_integers && column.ConciseType == SQL_INTEGER) column.ConciseType = SQL_BIGINT;
    if (habits.guesses_sizes) {
        column.Unsized = IsGuessedSize(column);
        // What it has no name for is no single bit: that of five is told as one.
        const bool is_bits = column.Unsized && column.ConciseType == SQL_BIT;
        if (is_bits) column.ConciseType = SQL_VARCHAR;
    }
    if (!habits.hides_fractions) return;
    const ColumnKind kind = KindOf(column);
    if (kind == ColumnKind::Time || kind == ColumnKind::Timestamp) column.Digits = -1;
}

}  // namespace

ODBCDatabase::ODBCDatabase() : value_buffer_(kValueBufferBytes) {}

ODBCDatabase::~ODBCDatabase() { ODBCDatabase::Close(); }

void ODBCDatabase::StoreDiagnostic() {
    last_error_ = odbc::Diagnostic(environment_.Get(), connection_.Get(), statement_.Get());
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
    habits_ = nullptr;
    is_utf8_.reset();
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

std::size_t ODBCDatabase::LongestName(Named named) const {
    SQLUSMALLINT longest = 0;
    SQLGetInfoW(connection_.Get(),
                named == Named::Table ? SQL_MAX_TABLE_NAME_LEN : SQL_MAX_COLUMN_NAME_LEN, &longest,
                sizeof longest, nullptr);
    return longest;
}

bool ODBCDatabase::CloseQuery() {
    reader_.reset();
    statement_.Reset();
    query_active_ = false;
    return true;
}

bool ODBCDatabase::Close() {
    CloseQuery();
    // A connection within a transaction does not close (ODBC reference, SQLDisconnect).
    if (in_transactions_) SQLEndTran(SQL_HANDLE_DBC, connection_.Get(), SQL_ROLLBACK);
    in_transactions_ = false;
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

bool ODBCDatabase::Query(String& error, const String& statement, RowSet& rows) {
    if (!PrepareStatement(error, statement)) return false;
    if (method_.in_blocks) CharactersAreUtf8();  // while there is no other statement
    query_active_ = false;
    if (!Execute(statement)) {
        StoreDiagnostic();
        error = u"ODBCDatabase::Query execution error: " + last_error_;
        return false;
    }
    reading_failed_ = false;
    if (!DescribeResult(rows)) {
        error = u"ODBCDatabase::Query execution error: " + last_error_;
        return false;
    }
    query_active_ = true;
    return true;
}

bool ODBCDatabase::Describe(String& error, const String& statement, RowSet& rows) {
    if (!PrepareStatement(error, statement)) return false;
    if (!odbc::Prepare(statement_.Get(), statement, narrow_driver_)) {
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
    CorrectColumns(rows.Columns);
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

bool ODBCDatabase::DescribeResult(RowSet& rows) {
    const DescribedResult described = DescribeColumns(statement_.Get(), rows.Columns);
    column_count_ = described.columns;
    if (!described.told && method_.told_columns) {
        StoreDiagnostic();
        return false;
    }
    CorrectColumns(rows.Columns);
    const ReaderSession session{.habits = Habits(),
                                .connection = connection_.Get(),
                                .utf8 = method_.in_blocks && CharactersAreUtf8()};
    reader_ = MakeRowReader(method_, session, statement_.Get(), rows.Columns, value_buffer_);
    return true;
}

void ODBCDatabase::CorrectColumns(std::vector<ColumnDefinition>& columns) {
    for (ColumnDefinition& column : columns) CorrectColumn(column, Habits());
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
    reading_failed_ = !DescribeResult(rows);
    return !reading_failed_;
}

// ---- Writing ----

String ODBCDatabase::Product() const { return odbc::InfoText(connection_.Get(), SQL_DBMS_NAME); }

const DriverHabits& ODBCDatabase::Habits() {
    if (habits_ == nullptr) {
        habits_ = &HabitsOf(Product(), odbc::InfoText(connection_.Get(), SQL_DBMS_VER),
                            odbc::InfoText(connection_.Get(), SQL_DRIVER_NAME));
    }
    return *habits_;
}

TransactionKind ODBCDatabase::Transactions() const {
    SQLUSMALLINT capable = SQL_TC_NONE;
    SQLGetInfoW(connection_.Get(), SQL_TXN_CAPABLE, &capable, sizeof capable, nullptr);
    if (capable == SQL_TC_NONE) return TransactionKind::None;
    return capable == SQL_TC_ALL ? TransactionKind::All : TransactionKind::Rows;
}

bool ODBCDatabase::SetAutocommit(String& error, std::uint32_t value) {
    CloseQuery();
    // NOLINTNEXTLINE(performance-no-int-to-ptr): ODBC's interface
    auto* const pointer = reinterpret_cast<SQLPOINTER>(std::uintptr_t{value});
    if (odbc::Succeeded(
            SQLSetConnectAttrW(connection_.Get(), SQL_ATTR_AUTOCOMMIT, pointer, SQL_IS_UINTEGER))) {
        in_transactions_ = value == SQL_AUTOCOMMIT_OFF;
        return true;
    }
    StoreDiagnostic();
    error = last_error_;
    return false;
}

bool ODBCDatabase::BeginTransactions(String& error) {
    return SetAutocommit(error, SQL_AUTOCOMMIT_OFF);
}
bool ODBCDatabase::EndTransactions(String& error) {
    return SetAutocommit(error, SQL_AUTOCOMMIT_ON);
}

bool ODBCDatabase::EndTransaction(String& error, std::int16_t how) {
    CloseQuery();
    if (odbc::Succeeded(SQLEndTran(SQL_HANDLE_DBC, connection_.Get(), how))) return true;
    StoreDiagnostic();
    error = last_error_;
    return false;
}

bool ODBCDatabase::Commit(String& error) { return EndTransaction(error, SQL_COMMIT); }
bool ODBCDatabase::Rollback(String& error) { return EndTransaction(error, SQL_ROLLBACK); }

bool ODBCDatabase::SetSavepoint(String& error) {
    return ExecNonQuery(error, SavepointWordsOf(Product()).set);
}

bool ODBCDatabase::ReleaseSavepoint(String& error) {
    const String release = SavepointWordsOf(Product()).release;
    return release.empty() || ExecNonQuery(error, release);
}

bool ODBCDatabase::RollbackToSavepoint(String& error) {
    return ExecNonQuery(error, SavepointWordsOf(Product()).roll_back) && ReleaseSavepoint(error);
}

// (ODBC reference, SQLGetConnectAttr)
bool ODBCDatabase::IsConnectionLost() const {
    SQLUINTEGER dead = SQL_CD_FALSE;
    SQLGetConnectAttrW(connection_.Get(), SQL_ATTR_CONNECTION_DEAD, &dead, SQL_IS_UINTEGER,
                       nullptr);
    return dead == SQL_CD_TRUE;
}

// Whether the session's character set is UTF-8; false where nothing is known that asks for it.
bool ODBCDatabase::CharactersAreUtf8() {
    if (is_utf8_) return *is_utf8_;
    const String query(Habits().charset_query);
    is_utf8_ = false;
    if (query.empty()) return false;
    const ODBCHandle statement(ODBCHandle::Kind::Statement, connection_.Get());
    String name;
    const bool told =
        statement && odbc::Succeeded(SQLExecDirectW(statement.Get(), odbc::Wide(query), SQL_NTS)) &&
        odbc::Succeeded(SQLFetch(statement.Get())) &&
        value_buffer_.ReadCut(statement.Get(), 1, name) == ODBCValueBuffer::Outcome::Text;
    is_utf8_ = told && name.starts_with(u"utf8");
    return *is_utf8_;
}

std::unique_ptr<RowSender> ODBCDatabase::MakeSender(const InsertTarget& target) {
    const DriverHabits& habits = Habits();
    const ODBCInsert::Session session{.environment = environment_.Get(),
                                      .connection = connection_.Get(),
                                      .narrow = narrow_driver_,
                                      .utf8 = CharactersAreUtf8()};
    return std::make_unique<ODBCInsert>(target, habits, session);
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
