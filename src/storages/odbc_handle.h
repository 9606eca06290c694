#pragma once

#include <cstdint>
#include <utility>

namespace DataStorages {

// The one owner of a handle of ODBC, which it frees. It may hold none.
class ODBCHandle {
public:
    enum class Kind : std::int16_t { Environment = 1, Connection = 2, Statement = 3 };  // as ODBC

    ODBCHandle() = default;
    // Allocates a handle below another one, an environment below none. Holds none when that fails;
    // the diagnostic is then the parent's.
    ODBCHandle(Kind kind, void* parent);
    ~ODBCHandle() { Reset(); }
    ODBCHandle(ODBCHandle&& other) noexcept : kind_(other.kind_), handle_(other.Release()) {}
    ODBCHandle& operator=(ODBCHandle&& other) noexcept;

    void* Get() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }
    void Reset();
    // Gives the handle up without freeing it.
    void* Release() { return std::exchange(handle_, nullptr); }

private:
    Kind kind_ = Kind::Statement;
    void* handle_ = nullptr;
};

}  // namespace DataStorages
