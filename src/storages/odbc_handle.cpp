#include "storages/odbc_handle.h"

#include "storages/odbc_calls.h"

namespace DataStorages {

static_assert(static_cast<SQLSMALLINT>(ODBCHandle::Kind::Environment) == SQL_HANDLE_ENV);
static_assert(static_cast<SQLSMALLINT>(ODBCHandle::Kind::Connection) == SQL_HANDLE_DBC);
static_assert(static_cast<SQLSMALLINT>(ODBCHandle::Kind::Statement) == SQL_HANDLE_STMT);

ODBCHandle::ODBCHandle(Kind kind, void* parent) : kind_(kind) {
    const SQLRETURN result = SQLAllocHandle(static_cast<SQLSMALLINT>(kind), parent, &handle_);
    if (!odbc::Succeeded(result)) handle_ = nullptr;
}

ODBCHandle& ODBCHandle::operator=(ODBCHandle&& other) noexcept {
    if (this == &other) return *this;
    Reset();
    kind_ = other.kind_;
    handle_ = other.Release();
    return *this;
}

void ODBCHandle::Reset() {
    if (handle_ != nullptr) SQLFreeHandle(static_cast<SQLSMALLINT>(kind_), Release());
}

}  // namespace DataStorages
