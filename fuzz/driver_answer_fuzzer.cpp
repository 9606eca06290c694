// Any answers of an ODBC driver: the calls below stand in for the driver manager's, and the bytes
// settle what they return. They keep to what ODBC allows, which leaves a driver much: lengths that
// are negative or too great, texts without an end, rows that do not come.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstring>

#include "platform/odbc.h"
#include "storages/odbc_database.h"

namespace {

FuzzedDataProvider* g_chance = nullptr;
SQLULEN g_block = 1;
SQLULEN* g_fetched = nullptr;
SQLUSMALLINT* g_states = nullptr;

struct Bound {
    char* data;
    SQLLEN room;
    SQLLEN* indicators;
};
std::vector<Bound> g_bound;

// Mostly success; failure once there is nothing left to draw from, so that everything ends.
SQLRETURN Result() {
    if (g_chance->remaining_bytes() == 0) return SQL_ERROR;
    return g_chance->PickValueInArray<SQLRETURN>({SQL_SUCCESS, SQL_SUCCESS, SQL_SUCCESS,
                                                  SQL_SUCCESS_WITH_INFO, SQL_NO_DATA, SQL_ERROR,
                                                  SQL_INVALID_HANDLE, SQL_STILL_EXECUTING});
}

SQLLEN Length(SQLLEN room) {
    return g_chance->PickValueInArray<SQLLEN>(
        {0, 2, room - 2, room, room + 2, room * 2, SQL_NULL_DATA, SQL_NO_TOTAL, -100, 1 << 30});
}

// Fills some of a buffer of so many bytes, with an end or without. In a great one the search for an
// end would take all the time.
void Fill(void* buffer, SQLLEN room) {
    constexpr SQLLEN kMost = 64;
    constexpr SQLLEN kGreat = 100'000;
    if (buffer == nullptr || room < 2) return;
    const auto most = static_cast<std::size_t>(std::min(room, kMost));
    const auto size = g_chance->ConsumeIntegralInRange<std::size_t>(0, most);
    const std::string bytes = g_chance->ConsumeBytesAsString(size);
    std::memcpy(buffer, bytes.data(), bytes.size());
    const bool ends = room > kGreat || g_chance->ConsumeBool();
    if (!ends || bytes.size() + 2 > static_cast<std::size_t>(room)) return;
    std::memset(static_cast<char*>(buffer) + bytes.size(), 0, 2);
}

template <class Size>
SQLRETURN Tell(void* buffer, SQLLEN room, Size* length) {
    Fill(buffer, room);
    if (length != nullptr) *length = static_cast<Size>(Length(room));
    return Result();
}

}  // namespace

extern "C" {
SQLRETURN SQLAllocHandle(SQLSMALLINT kind, SQLHANDLE, SQLHANDLE* handle) {
    static int any;
    *handle = &any;
    return kind == SQL_HANDLE_ENV ? static_cast<SQLRETURN>(SQL_SUCCESS) : Result();
}
SQLRETURN SQLFreeHandle(SQLSMALLINT, SQLHANDLE) { return SQL_SUCCESS; }
SQLRETURN SQLSetEnvAttr(SQLHENV, SQLINTEGER, SQLPOINTER, SQLINTEGER) { return Result(); }
SQLRETURN SQLDriverConnectW(SQLHDBC, SQLHWND, SQLWCHAR*, SQLSMALLINT, SQLWCHAR* completed,
                            SQLSMALLINT room, SQLSMALLINT* length, SQLUSMALLINT) {
    return Tell(completed, room * 2, length);
}
SQLRETURN SQLDisconnect(SQLHDBC) { return Result(); }
SQLRETURN SQLErrorW(SQLHENV, SQLHDBC, SQLHSTMT, SQLWCHAR* state, SQLINTEGER* native,
                    SQLWCHAR* message, SQLSMALLINT room, SQLSMALLINT* length) {
    Fill(state, 12);
    *native = g_chance->ConsumeIntegral<SQLINTEGER>();
    return Tell(message, room * 2, length);
}
SQLRETURN SQLGetInfoW(SQLHDBC, SQLUSMALLINT what, SQLPOINTER value, SQLSMALLINT room,
                      SQLSMALLINT* length) {
    if (what != SQL_GETDATA_EXTENSIONS) return Tell(value, room, length);
    *static_cast<SQLUINTEGER*>(value) = g_chance->ConsumeIntegral<SQLUINTEGER>();
    return Result();
}
SQLRETURN SQLGetConnectAttrW(SQLHDBC, SQLINTEGER, SQLPOINTER value, SQLINTEGER room,
                             SQLINTEGER* length) {
    return Tell(value, room, length);
}
SQLRETURN SQLExecDirectW(SQLHSTMT, SQLWCHAR*, SQLINTEGER) { return Result(); }
SQLRETURN SQLPrepareW(SQLHSTMT, SQLWCHAR*, SQLINTEGER) { return Result(); }
SQLRETURN SQLTablesW(SQLHSTMT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*,
                     SQLSMALLINT, SQLWCHAR*, SQLSMALLINT) {
    return Result();
}
SQLRETURN SQLColumnsW(SQLHSTMT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*,
                      SQLSMALLINT, SQLWCHAR*, SQLSMALLINT) {
    return Result();
}
SQLRETURN SQLNumResultCols(SQLHSTMT, SQLSMALLINT* count) {
    *count = g_chance->PickValueInArray<SQLSMALLINT>({0, 1, 2, 3, 300, -1});
    return Result();
}
SQLRETURN SQLColAttributesW(SQLHSTMT, SQLUSMALLINT, SQLUSMALLINT, SQLPOINTER text, SQLSMALLINT room,
                            SQLSMALLINT* length, SQLLEN* value) {
    if (value != nullptr) *value = g_chance->ConsumeIntegral<std::int16_t>();
    return Tell(text, room, length);
}
SQLRETURN SQLColAttributeW(SQLHSTMT statement, SQLUSMALLINT number, SQLUSMALLINT field,
                           SQLPOINTER text, SQLSMALLINT room, SQLSMALLINT* length, SQLLEN* value) {
    return SQLColAttributesW(statement, number, field, text, room, length, value);
}
SQLRETURN SQLBindCol(SQLHSTMT, SQLUSMALLINT, SQLSMALLINT, SQLPOINTER data, SQLLEN room,
                     SQLLEN* indicators) {
    g_bound.push_back({static_cast<char*>(data), room, indicators});
    return Result();
}
SQLRETURN SQLSetStmtAttrW(SQLHSTMT, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER) {
    const SQLRETURN result = Result();
    if (!SQL_SUCCEEDED(result) && value != nullptr) return result;
    if (attribute == SQL_ATTR_ROW_ARRAY_SIZE) g_block = reinterpret_cast<SQLULEN>(value);
    if (attribute == SQL_ATTR_ROWS_FETCHED_PTR) g_fetched = static_cast<SQLULEN*>(value);
    if (attribute == SQL_ATTR_ROW_STATUS_PTR) g_states = static_cast<SQLUSMALLINT*>(value);
    return result;
}
SQLRETURN SQLFreeStmt(SQLHSTMT, SQLUSMALLINT what) {
    if (what == SQL_UNBIND) g_bound.clear();
    return SQL_SUCCESS;
}
SQLRETURN SQLFetch(SQLHSTMT) {
    const SQLULEN rows =
        g_chance->ConsumeIntegralInRange<SQLULEN>(0, std::min<SQLULEN>(g_block, 4));
    for (const Bound& bound : g_bound) {
        for (SQLULEN row = 0; row < rows; ++row) {
            Fill(bound.data + row * static_cast<SQLULEN>(bound.room), bound.room);
            bound.indicators[row] = Length(bound.room);
        }
    }
    for (SQLULEN row = 0; g_states != nullptr && row < rows; ++row) {
        g_states[row] = g_chance->ConsumeIntegralInRange<SQLUSMALLINT>(0, 6);
    }
    if (g_fetched != nullptr) *g_fetched = g_chance->ConsumeBool() ? rows : 100'000;
    return Result();
}
SQLRETURN SQLGetData(SQLHSTMT, SQLUSMALLINT, SQLSMALLINT, SQLPOINTER data, SQLLEN room,
                     SQLLEN* indicator) {
    Fill(data, room);
    *indicator = Length(room);
    return Result();
}
SQLRETURN SQLSetPos(SQLHSTMT, SQLSETPOSIROW, SQLUSMALLINT, SQLUSMALLINT) { return Result(); }
SQLRETURN SQLMoreResults(SQLHSTMT) { return Result(); }
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider chance(data, size);
    g_chance = &chance;
    g_bound.clear();
    g_block = 1;
    g_fetched = nullptr;
    g_states = nullptr;

    String error;
    RowSet rows;
    static DataStorages::ODBCDatabase& database = *new DataStorages::ODBCDatabase;  // has much room
    if (!database.Open(error, u"Driver=any", {}, {})) return 0;
    database.ReadBy({chance.ConsumeBool(), 65'536, chance.ConsumeBool()});
    if (database.Query(error, u"select", rows)) {
        do {
            while (database.Fetch(error, rows, true)) {
            }
        } while (database.HasMoreData(error, rows));
    }
    std::vector<DataStorages::TableEntry> tables;
    database.Tables(error, tables, DataStorages::TableKind::Tables);
    std::vector<DataStorages::CatalogColumn> columns;
    database.Columns(error, u"", u"t", columns);
    database.Close();
    return 0;
}
