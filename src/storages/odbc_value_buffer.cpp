#include "storages/odbc_value_buffer.h"

#include "storages/odbc_calls.h"

namespace DataStorages {

ODBCValueBuffer::ODBCValueBuffer(std::int32_t bytes)
    : units_(std::make_unique_for_overwrite<char16_t[]>(
          static_cast<std::size_t>(bytes) / sizeof(char16_t) + 1)) {}

ODBCValueBuffer::Outcome ODBCValueBuffer::Read(void* statement, std::uint16_t number,
                                               std::int32_t room_bytes, StringView& text) {
    SQLLEN indicator = 0;
    if (!odbc::Succeeded(
            SQLGetData(statement, number, SQL_C_WCHAR, units_.get(), room_bytes, &indicator))) {
        return Outcome::Failed;
    }
    if (indicator == SQL_NULL_DATA) return Outcome::Null;
    // The driver ends a cut value with a zero inside the buffer; the indicator tells the full size,
    // unless the driver does not know it (SQL_NO_TOTAL).
    const std::size_t most = static_cast<std::size_t>(room_bytes) / sizeof(char16_t) - 1;
    std::size_t length = most;
    if (indicator >= 0) {
        length = std::min(most, static_cast<std::size_t>(indicator) / sizeof(char16_t));
    } else {
        units_[most] = u'\0';
        length = std::char_traits<char16_t>::length(units_.get());
    }
    text = StringView(units_.get(), length);
    return Outcome::Text;
}

}  // namespace DataStorages
