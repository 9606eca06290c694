#include "storages/odbc_database.h"

#include <algorithm>
#include <array>
#include <cassert>

#include "base/utf8.h"
#include "files/format.h"
#include "files/text.h"
#include "platform/driver_library.h"
#include "platform/odbc.h"

namespace DataStorages {
namespace {

constexpr std::size_t kMessageCharacters = 512;
constexpr std::size_t kStateCharacters = 5;
constexpr std::size_t kLastErrorCharacters = 543;
constexpr std::size_t kConnectOutputCharacters = 388;
constexpr std::size_t kAttributeBufferBytes = 255;
constexpr std::size_t kListedCharacters = 255;
constexpr std::size_t kAttributesCharacters = 8'192;

// ODBC takes texts that it does not change through pointers to non-constant units.
SQLWCHAR* ToOdbc(const char16_t* text) {
    return reinterpret_cast<SQLWCHAR*>(const_cast<char16_t*>(text));
}
SQLWCHAR* ToOdbc(const String& text) { return ToOdbc(text.c_str()); }

SQLCHAR* ToOdbc(std::string& bytes) { return reinterpret_cast<SQLCHAR*>(bytes.data()); }

SQLSMALLINT LengthOf(const String& text) { return static_cast<SQLSMALLINT>(text.size()); }

bool IsSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDFFF; }

bool Succeeded(SQLRETURN result) {
    return result == SQL_SUCCESS || result == SQL_SUCCESS_WITH_INFO;
}

// A statement that changes no row ends with SQL_NO_DATA (ODBC reference, SQLExecDirect).
bool Executed(SQLRETURN result) { return Succeeded(result) || result == SQL_NO_DATA; }

void FreeHandle(SQLSMALLINT type, void*& handle) {
    if (handle != nullptr) SQLFreeHandle(type, handle);
    handle = nullptr;
}

// The text in a buffer that a driver was to end with a zero.
template <std::size_t N>
String TextOf(const std::array<char16_t, N>& buffer) {
    return {buffer.begin(), std::find(buffer.begin(), buffer.end(), u'\0')};
}

// The texts in a buffer, each ended by a zero and the last by two, with ";" between them.
template <std::size_t N>
String JoinedTexts(const std::array<char16_t, N>& buffer) {
    String joined;
    auto at = buffer.begin();
    while (at != buffer.end() && *at != u'\0') {
        const auto end = std::find(at, buffer.end(), u'\0');
        if (!joined.empty()) joined += u';';
        joined.append(at, end);
        at = end == buffer.end() ? end : end + 1;
    }
    return joined;
}

// Literals of these types stand in quotes unless the driver says otherwise.
bool IsQuotedType(std::int32_t type) {
    switch (type) {
        case SQL_UNKNOWN_TYPE:
        case SQL_CHAR:
        case SQL_VARCHAR:
        case SQL_LONGVARCHAR:
        case SQL_WCHAR:
        case SQL_WVARCHAR:
        case SQL_WLONGVARCHAR:
        case SQL_DATETIME:
        case SQL_TYPE_DATE:
        case SQL_TYPE_TIME:
        case SQL_TYPE_TIMESTAMP:
        case SQL_TIMESTAMP:
        case SQL_BINARY:
        case SQL_VARBINARY:
        case SQL_LONGVARBINARY:
            return true;
        default:
            return false;
    }
}

}  // namespace

ODBCDatabase::ODBCDatabase()
    : value_buffer_(std::make_unique_for_overwrite<char16_t[]>(
          static_cast<std::size_t>(kValueBufferBytes) / sizeof(char16_t) + 1)) {
    if (!Succeeded(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment_))) {
        environment_ = nullptr;
        return;
    }
    const std::uintptr_t version = SQL_OV_ODBC3;  // a number, passed as a pointer
    // NOLINTNEXTLINE(performance-no-int-to-ptr): ODBC's interface
    auto* const value = reinterpret_cast<SQLPOINTER>(version);
    SQLSetEnvAttr(environment_, SQL_ATTR_ODBC_VERSION, value, 0);
}

ODBCDatabase::~ODBCDatabase() {
    assert(connection_ == nullptr);
    FreeHandle(SQL_HANDLE_ENV, environment_);
}

void ODBCDatabase::StoreDiagnostic() {
    std::array<char16_t, kMessageCharacters> message{};
    std::array<char16_t, kStateCharacters + 1> state{};
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    SQLErrorW(environment_, connection_, statement_, ToOdbc(state.data()), &native,
              ToOdbc(message.data()), static_cast<SQLSMALLINT>(message.size()), &length);
    message.back() = state.back() = u'\0';
    last_error_ = Format(u"%s,%s,%d", TextOf(message), TextOf(state), native);
    if (last_error_.size() > kLastErrorCharacters) last_error_.resize(kLastErrorCharacters);
}

// ---- Connecting ----

bool ODBCDatabase::Open(String& error, const String& source, const String& login,
                        const String& password) {
    Close();
    if (environment_ == nullptr ||
        !Succeeded(SQLAllocHandle(SQL_HANDLE_DBC, environment_, &connection_))) {
        if (environment_ != nullptr) StoreDiagnostic();
        error =
            Format(u"ODBCDatabase::Open. Connection handle allocation failed: '%s'", last_error_);
        return false;
    }
    connected_ = Connect(error, source, login, password);
    if (!connected_) FreeHandle(SQL_HANDLE_DBC, connection_);
    narrow_driver_ = connected_ && !platform::DriverTakesWideText(DriverName());
    return connected_;
}

bool ODBCDatabase::Connect(String& error, const String& source, const String& login,
                           const String& password) {
    if (source.find(u"Driver=") != String::npos) {
        std::array<char16_t, kConnectOutputCharacters> completed{};
        SQLSMALLINT length = 0;
        if (Succeeded(SQLDriverConnectW(
                connection_, nullptr, ToOdbc(source), SQL_NTS, ToOdbc(completed.data()),
                static_cast<SQLSMALLINT>(completed.size()), &length, SQL_DRIVER_NOPROMPT))) {
            return true;
        }
        StoreDiagnostic();
        error = Format(u"ODBCDatabase::Open. Connection with string '%s' failed: '%s'", source,
                       last_error_);
        return false;
    }
    // The lengths spare unixODBC a count of its own, which runs past the end of short texts.
    if (Succeeded(SQLConnectW(connection_, ToOdbc(source), LengthOf(source), ToOdbc(login),
                              LengthOf(login), ToOdbc(password), LengthOf(password)))) {
        return true;
    }
    StoreDiagnostic();
    error = Format(u"ODBCDatabase::Open. Connection to '%s' for '%s' failed: '%s'", source, login,
                   last_error_);
    return false;
}

String ODBCDatabase::DriverName() const {
    std::array<char16_t, kListedCharacters> name{};
    SQLSMALLINT length = 0;
    const auto bytes = static_cast<SQLSMALLINT>((name.size() - 1) * sizeof(char16_t));
    SQLGetInfoW(connection_, SQL_DRIVER_NAME, name.data(), bytes, &length);
    return TextOf(name);
}

bool ODBCDatabase::CloseQuery() {
    FreeHandle(SQL_HANDLE_STMT, statement_);
    query_active_ = false;
    return true;
}

bool ODBCDatabase::Close() {
    CloseQuery();
    if (connection_ != nullptr) SQLDisconnect(connection_);
    FreeHandle(SQL_HANDLE_DBC, connection_);
    connected_ = false;
    return true;
}

// ---- Statements ----

bool ODBCDatabase::AllocateStatement() {
    if (Succeeded(SQLAllocHandle(SQL_HANDLE_STMT, connection_, &statement_))) return true;
    statement_ = nullptr;
    StoreDiagnostic();
    return false;
}

// A statement that an earlier call left open is not freed here: disconnecting does that.
bool ODBCDatabase::PrepareStatement(String& error, const String& statement) {
    if (environment_ == nullptr || !connected_) {
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

// unixODBC narrows the text of a call for a driver without wide calls. As soon as it holds a
// character beyond the basic plane, the low byte of every character is all that is kept: values are
// lost, and some of them turn into quotes, which lets them out of their literals. Such texts are
// narrowed here, to UTF-8, in which no character has the byte of a quote.
bool ODBCDatabase::MustNarrow(const String& text) const {
    return narrow_driver_ && std::any_of(text.begin(), text.end(), IsSurrogate);
}

bool ODBCDatabase::Execute(const String& statement) {
    if (!MustNarrow(statement)) {
        return Executed(SQLExecDirectW(statement_, ToOdbc(statement), SQL_NTS));
    }
    std::string bytes = ToUtf8(statement);
    return Executed(SQLExecDirect(statement_, ToOdbc(bytes), SQL_NTS));
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
    DescribeColumns(rows);
    query_active_ = true;
    return true;
}

bool ODBCDatabase::ExecNonQuery(String& error, const String& statement) {
    if (!PrepareStatement(error, statement)) return false;
    if (Execute(statement)) return CloseQuery();
    StoreDiagnostic();
    error = Format(u"ODBCDatabase::ExecNonQuery execution error: %s", last_error_);
    return false;
}

// ---- Columns of a result set ----

void ODBCDatabase::DescribeColumns(RowSet& rows) {
    if (statement_ == nullptr) return;
    rows.Columns.clear();
    SQLSMALLINT count = 0;
    if (!Succeeded(SQLNumResultCols(statement_, &count))) count = 0;
    for (SQLSMALLINT number = 1; number <= count; ++number) {
        rows.Columns.push_back(DescribeColumn(static_cast<std::uint16_t>(number)));
    }
    column_count_ = count;
}

ColumnDefinition ODBCDatabase::DescribeColumn(std::uint16_t number) const {
    const auto number_attribute = [&](std::uint16_t field) {
        return static_cast<std::int32_t>(NumberAttribute(number, field));
    };
    ColumnDefinition column;
    column.Name = TextAttribute(number, SQL_DESC_NAME);
    column.TableName = TextAttribute(number, SQL_DESC_TABLE_NAME);
    column.Length = number_attribute(SQL_DESC_LENGTH);
    column.DisplaySize = number_attribute(SQL_DESC_DISPLAY_SIZE);
    column.DataType = number_attribute(SQL_DESC_TYPE);
    column.OctetLength = number_attribute(SQL_DESC_OCTET_LENGTH);
    column.AutoUnique = number_attribute(SQL_DESC_AUTO_UNIQUE_VALUE) == SQL_TRUE;
    column.Nullable = number_attribute(SQL_DESC_NULLABLE) == SQL_NULLABLE;
    const String own_mark = IsQuotedType(column.DataType) ? u"'" : u"";
    bool refused = false;
    column.LiteralPrefix = TextAttribute(number, SQL_DESC_LITERAL_PREFIX, &refused);
    if (refused) column.LiteralPrefix = own_mark;
    column.LiteralSuffix = TextAttribute(number, SQL_DESC_LITERAL_SUFFIX, &refused);
    if (refused) column.LiteralSuffix = own_mark;
    column.LocalTypeName = TextAttribute(number, SQL_DESC_LOCAL_TYPE_NAME);
    column.TypeName = TextAttribute(number, SQL_DESC_TYPE_NAME);
    column.MaxWidth = column.Name.size();
    return column;
}

String ODBCDatabase::TextAttribute(std::uint16_t number, std::uint16_t field, bool* refused) const {
    std::array<char16_t, kAttributeBufferBytes / sizeof(char16_t) + 1> buffer{};
    SQLSMALLINT length = 0;
    // An odd length is refused by some driver managers: the byte beyond whole characters goes.
    const auto bytes = static_cast<SQLSMALLINT>((buffer.size() - 1) * sizeof(char16_t));
    // MariaDB's driver knows the call of ODBC 3 only. Its literal marks are not taken: it tells
    // "0x" for some types whose values it delivers as characters.
    const bool told =
        Succeeded(
            SQLColAttributesW(statement_, number, field, buffer.data(), bytes, &length, nullptr)) ||
        (refused == nullptr && Succeeded(SQLColAttributeW(statement_, number, field, buffer.data(),
                                                          bytes, &length, nullptr)));
    if (refused != nullptr) *refused = !told;
    return told ? TextOf(buffer) : String{};
}

std::int64_t ODBCDatabase::NumberAttribute(std::uint16_t number, std::uint16_t field) const {
    SQLLEN value = 0;
    const bool told =
        Succeeded(SQLColAttributesW(statement_, number, field, nullptr, 0, nullptr, &value)) ||
        Succeeded(SQLColAttributeW(statement_, number, field, nullptr, 0, nullptr, &value));
    return told ? value : 0;
}

// ---- Rows ----

// True when a call has moved to the next row or result. Its failure counts as the end; what the
// driver said of it is kept.
bool ODBCDatabase::MovedOn(std::int16_t result) {
    // A statement that returns no rows has no cursor to move: no failure either.
    reading_failed_ = column_count_ != 0 && !Executed(result);
    if (reading_failed_) StoreDiagnostic();
    return Succeeded(result);
}

// Reads a column of the current row into the value buffer. `text` points there until the next read.
ODBCDatabase::Value ODBCDatabase::ReadValue(std::uint16_t number, std::int32_t buffer_bytes,
                                            StringView& text) {
    SQLLEN indicator = 0;
    if (!Succeeded(SQLGetData(statement_, number, SQL_C_WCHAR, value_buffer_.get(), buffer_bytes,
                              &indicator))) {
        StoreDiagnostic();
        return Value::Failed;
    }
    if (indicator == SQL_NULL_DATA) return Value::Null;
    // The driver ends a cut value with a zero inside the buffer; the indicator tells the full size.
    const std::size_t most = static_cast<std::size_t>(buffer_bytes) / sizeof(char16_t) - 1;
    std::size_t length = most;
    if (indicator >= 0) {
        length = std::min(most, static_cast<std::size_t>(indicator) / sizeof(char16_t));
    } else {
        value_buffer_[most] = u'\0';
        length = std::char_traits<char16_t>::length(value_buffer_.get());
    }
    text = StringView(value_buffer_.get(), length);
    return Value::Text;
}

bool ODBCDatabase::Fetch(String& error, RowSet& rows, bool track_widths) {
    if (!query_active_ || !MovedOn(SQLFetch(statement_))) return false;
    const auto count = static_cast<std::uint16_t>(column_count_);
    rows.GrowRow(count);
    for (std::uint16_t i = 0; i < count; ++i) {
        StringView text;
        const Value read = ReadValue(static_cast<std::uint16_t>(i + 1), kValueBufferBytes, text);
        if (read == Value::Failed) {
            error = last_error_;
            return false;
        }
        DataValue& value = rows.Row[i];
        value.IsNull = read == Value::Null;
        value.Text.assign(text);
        if (!track_widths || value.IsNull) continue;
        if (i >= rows.Columns.size()) {
            error = u"ODBCDatabase::Fetch. Wrong 'definitions' array size.";
            return false;
        }
        rows.Columns[i].RaiseMaxWidth(text.size());
    }
    return true;
}

bool ODBCDatabase::HasMoreData(String& error, RowSet& rows) {
    if (statement_ == nullptr) {
        error = u"ODBCDatabase::HasMoreData no active statement";
        return false;
    }
    if (!MovedOn(SQLMoreResults(statement_))) return false;
    DescribeColumns(rows);
    return true;
}

// ---- Catalogue ----

String ODBCDatabase::ReadCatalogText(std::uint16_t number) {
    StringView text;
    return ReadValue(number, kCatalogBufferBytes, text) == Value::Text ? String(text) : String{};
}

// `name` as a search pattern that matches only itself, where the driver has an escape character.
String ODBCDatabase::SearchPattern(const String& name) const {
    std::array<char16_t, 8> escape{};
    SQLSMALLINT length = 0;
    const auto bytes = static_cast<SQLSMALLINT>((escape.size() - 1) * sizeof(char16_t));
    if (!Succeeded(
            SQLGetInfoW(connection_, SQL_SEARCH_PATTERN_ESCAPE, escape.data(), bytes, &length))) {
        return name;
    }
    const String mark = TextOf(escape);
    if (mark.empty()) return name;
    String pattern;
    for (const char16_t unit : name) {
        if (unit == u'_' || unit == u'%' || mark.find(unit) != String::npos) pattern += mark;
        pattern += unit;
    }
    return pattern;
}

// The next row of a list of the catalogue. failed: it could not be read, though there may be one.
bool ODBCDatabase::FetchCatalogueRow(bool& failed) {
    const SQLRETURN result = SQLFetch(statement_);
    failed = !Executed(result);
    if (failed) StoreDiagnostic();
    return Succeeded(result);
}

// The database that is connected, where databases are the catalogues of a server.
String ODBCDatabase::CurrentCatalog() const {
    std::array<char16_t, kListedCharacters> name{};
    SQLINTEGER length = 0;
    const auto bytes = static_cast<SQLINTEGER>((name.size() - 1) * sizeof(char16_t));
    SQLGetConnectAttrW(connection_, SQL_ATTR_CURRENT_CATALOG, name.data(), bytes, &length);
    return TextOf(name);
}

bool ODBCDatabase::Tables(String& error, std::vector<TableEntry>& tables, TableKind kind) {
    if (!connected_) {
        error = u"ODBCDatabase::Tables. The database connection is not established yet.";
        return false;
    }
    tables.clear();
    const String current = CurrentCatalog();
    if (!AllocateStatement()) return false;
    const String type = kind == TableKind::Views ? u"VIEW" : u"TABLE";
    if (!Succeeded(
            SQLTablesW(statement_, nullptr, 0, nullptr, 0, nullptr, 0, ToOdbc(type), SQL_NTS))) {
        StoreDiagnostic();
        error = Format(u"ODBCDatabase::Tables. Tables list error: %s", last_error_);
        CloseQuery();
        return false;
    }
    bool failed = false;
    while (FetchCatalogueRow(failed)) {
        TableEntry entry;
        const String catalog = ReadCatalogText(1);
        // Some drivers list the tables of all databases; only the connected one is asked for.
        if (!catalog.empty() && !current.empty() && catalog != current) continue;
        entry.Detail = ReadCatalogText(2);
        entry.Name = ReadCatalogText(3);
        tables.push_back(std::move(entry));
    }
    if (failed) error = Format(u"ODBCDatabase::Tables. Tables list error: %s", last_error_);
    return CloseQuery() && !failed;
}

// Asks for the columns of a table; an empty schema means any.
bool ODBCDatabase::ListColumns(const String& schema, const String& table) {
    if (!MustNarrow(schema + table)) {
        return Succeeded(SQLColumnsW(statement_, nullptr, 0,
                                     schema.empty() ? nullptr : ToOdbc(schema), SQL_NTS,
                                     ToOdbc(table), SQL_NTS, nullptr, 0));
    }
    std::string narrow_schema = ToUtf8(schema);
    std::string narrow_table = ToUtf8(table);
    return Succeeded(SQLColumns(statement_, nullptr, 0,
                                schema.empty() ? nullptr : ToOdbc(narrow_schema), SQL_NTS,
                                ToOdbc(narrow_table), SQL_NTS, nullptr, 0));
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
    if (!ListColumns(SearchPattern(schema), SearchPattern(table))) {
        StoreDiagnostic();
        error = Format(u"Table's column list error: %s", last_error_);
        CloseQuery();
        return false;
    }
    bool failed = false;
    while (FetchCatalogueRow(failed)) {
        CatalogColumn entry;
        entry.Table = ReadCatalogText(3);
        entry.Column = ReadCatalogText(4);
        entry.TypeName = ReadCatalogText(6);
        entry.Size = ReadCatalogText(7);
        entry.Digits = ReadCatalogText(9);
        entry.Nullable = ReadCatalogText(11);
        entry.Default = ReadCatalogText(13);
        columns.push_back(std::move(entry));
    }
    if (failed) error = Format(u"Table's column list error: %s", last_error_);
    return CloseQuery() && !failed;
}

// ---- The machine's drivers and data sources ----

bool ODBCDatabase::HasEnvironment(String& error) const {
    if (environment_ == nullptr) error = u"ODBC subsystem is not initialized properly";
    return environment_ != nullptr;
}

bool ODBCDatabase::DataSources(String& error, bool of_system, bool of_user,
                               std::vector<TableEntry>& sources) const {
    if (!HasEnvironment(error)) return false;
    sources.clear();
    if (of_system) ListDataSources(SQL_FETCH_FIRST_SYSTEM, 1, sources);
    if (of_user) ListDataSources(SQL_FETCH_FIRST_USER, 0, sources);
    return true;
}

void ODBCDatabase::ListDataSources(std::uint16_t first, std::uint8_t flag,
                                   std::vector<TableEntry>& sources) const {
    std::array<char16_t, kListedCharacters> name{};
    std::array<char16_t, kListedCharacters> driver{};
    const auto characters = static_cast<SQLSMALLINT>(kListedCharacters);
    SQLSMALLINT length = 0;
    for (SQLUSMALLINT direction = first;; direction = SQL_FETCH_NEXT) {
        const SQLRETURN result =
            SQLDataSourcesW(environment_, direction, ToOdbc(name.data()), characters, &length,
                            ToOdbc(driver.data()), characters, &length);
        if (!Succeeded(result)) return;
        sources.push_back({TextOf(name), TextOf(driver), flag});
    }
}

bool ODBCDatabase::Drivers(String& error, std::vector<DriverEntry>& drivers) const {
    if (!HasEnvironment(error)) return false;
    drivers.clear();
    std::array<char16_t, kListedCharacters> name{};
    std::array<char16_t, kAttributesCharacters> attributes{};
    SQLSMALLINT length = 0;
    for (SQLUSMALLINT direction = SQL_FETCH_FIRST;; direction = SQL_FETCH_NEXT) {
        const SQLRETURN result =
            SQLDriversW(environment_, direction, ToOdbc(name.data()),
                        static_cast<SQLSMALLINT>(name.size()), &length, ToOdbc(attributes.data()),
                        static_cast<SQLSMALLINT>(attributes.size()), &length);
        if (!Succeeded(result)) return true;
        drivers.push_back({TextOf(name), JoinedTexts(attributes)});
    }
}

}  // namespace DataStorages
