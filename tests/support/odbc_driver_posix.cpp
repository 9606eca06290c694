// An ODBC driver for what real ones hardly ever do. Each statement and each list has one row,
// behind which reading fails. Its values are "short", of a size that the driver does not know;
// those of the statement "unreadable" cannot be read.
#include <cstring>
#include <string_view>
#include <utility>

#include "platform/odbc.h"

namespace {

bool unreadable = false;
bool failed = false;
int rows_read = 0;

SQLRETURN Start(std::u16string_view statement) {
    unreadable = statement == u"unreadable";
    rows_read = 0;
    return SQL_SUCCESS;
}

SQLRETURN Fail() {
    failed = true;
    return SQL_ERROR;
}

}  // namespace

extern "C" {
SQLRETURN SQLAllocHandle(SQLSMALLINT, SQLHANDLE, SQLHANDLE* handle) {
    static int any;
    *handle = &any;
    return SQL_SUCCESS;
}
SQLRETURN SQLFreeHandle(SQLSMALLINT, SQLHANDLE) { return SQL_SUCCESS; }
SQLRETURN SQLDisconnect(SQLHDBC) { return SQL_SUCCESS; }
SQLRETURN SQLDriverConnectW(SQLHDBC, SQLHWND, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT,
                            SQLSMALLINT*, SQLUSMALLINT) {
    return SQL_SUCCESS;
}
SQLRETURN SQLExecDirectW(SQLHSTMT, SQLWCHAR* statement, SQLINTEGER) {
    return Start(reinterpret_cast<const char16_t*>(statement));
}
SQLRETURN SQLTablesW(SQLHSTMT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*,
                     SQLSMALLINT, SQLWCHAR*, SQLSMALLINT) {
    return Start(u"");
}
SQLRETURN SQLNumResultCols(SQLHSTMT, SQLSMALLINT* count) {
    *count = 1;
    return SQL_SUCCESS;
}
SQLRETURN SQLFetch(SQLHSTMT) {
    if (++rows_read > 1) return Fail();
    return SQL_SUCCESS;
}
SQLRETURN SQLGetData(SQLHSTMT, SQLUSMALLINT, SQLSMALLINT, SQLPOINTER value, SQLLEN,
                     SQLLEN* indicator) {
    if (unreadable) return Fail();
    std::memcpy(value, u"short", sizeof(u"short"));
    *indicator = SQL_NO_TOTAL;
    return SQL_SUCCESS;
}
SQLRETURN SQLErrorW(SQLHENV, SQLHDBC, SQLHSTMT, SQLWCHAR* state, SQLINTEGER* native,
                    SQLWCHAR* message, SQLSMALLINT, SQLSMALLINT* length) {
    if (!std::exchange(failed, false)) return SQL_NO_DATA;
    std::memcpy(state, u"HY000", sizeof(u"HY000"));
    std::memcpy(message, u"lost", sizeof(u"lost"));
    *native = 7;
    *length = 4;
    return SQL_SUCCESS;
}
}
