#include "storages/odbc_value_buffer.h"

#include "storages/odbc_calls.h"

namespace DataStorages {

ODBCValueBuffer::ODBCValueBuffer(std::int32_t bytes)
    : bytes_(bytes),
      units_(std::make_unique_for_overwrite<char16_t[]>(
          static_cast<std::size_t>(bytes) / sizeof(char16_t) + 1)) {}

ODBCValueBuffer::Outcome ODBCValueBuffer::Read(void* statement, std::uint16_t number,
                                               std::int32_t room_bytes, StringView& text) {
    SQLLEN indicator = 0;
    if (!odbc::Succeeded(
            SQLGetData(statement, number, SQL_C_WCHAR, units_.get(), room_bytes, &indicator))) {
        return Outcome::Failed;
    }
    if (indicator == SQL_NULL_DATA) return Outcome::Null;
    text = Piece(room_bytes, indicator);
    return Outcome::Text;
}

// What a call has put into the buffer. The driver ends a cut value with a zero inside the buffer;
// the indicator tells the full size, unless the driver does not know it (SQL_NO_TOTAL).
StringView ODBCValueBuffer::Piece(std::int32_t room_bytes, std::int64_t indicator) {
    const std::size_t most = static_cast<std::size_t>(room_bytes) / sizeof(char16_t) - 1;
    if (indicator >= 0) {
        const std::size_t length = static_cast<std::size_t>(indicator) / sizeof(char16_t);
        return {units_.get(), std::min(most, length)};
    }
    units_[most] = u'\0';
    return {units_.get(), std::char_traits<char16_t>::length(units_.get())};
}

ODBCValueBuffer::Outcome ODBCValueBuffer::ReadCut(void* statement, std::uint16_t number,
                                                  String& text) {
    StringView cut;
    const Outcome outcome = Read(statement, number, bytes_, cut);
    text.assign(cut);
    return outcome;
}

// SQL_SUCCESS ends a value whatever its indicator says; with information, there is more of it
// (ODBC reference, SQLGetData, "Retrieving Variable-Length Data in Parts").
ODBCValueBuffer::Outcome ODBCValueBuffer::ReadWhole(void* statement, std::uint16_t number,
                                                    String& text) {
    text.clear();
    for (;;) {
        SQLLEN indicator = 0;
        const SQLRETURN result =
            SQLGetData(statement, number, SQL_C_WCHAR, units_.get(), bytes_, &indicator);
        if (result == SQL_NO_DATA) return Outcome::Text;
        if (!odbc::Succeeded(result)) return Outcome::Failed;
        if (indicator == SQL_NULL_DATA) return Outcome::Null;
        const StringView piece = Piece(bytes_, indicator);
        text += piece;
        const bool ends = indicator >= 0 &&
                          piece.size() == static_cast<std::size_t>(indicator) / sizeof(char16_t);
        if (result == SQL_SUCCESS || ends || piece.empty()) return Outcome::Text;
    }
}

// A driver that does not know the size has filled the room.
ODBCValueBuffer::Outcome ODBCValueBuffer::ReadBytes(void* statement, std::uint16_t number,
                                                    String& digits) {
    digits.clear();
    for (;;) {
        SQLLEN left = 0;
        const SQLRETURN result =
            SQLGetData(statement, number, SQL_C_BINARY, units_.get(), bytes_, &left);
        if (result == SQL_NO_DATA) return Outcome::Text;
        if (!odbc::Succeeded(result)) return Outcome::Failed;
        if (left == SQL_NULL_DATA) return Outcome::Null;
        const bool ends = left >= 0 && left <= bytes_;
        AppendDigits(digits, units_.get(), static_cast<std::size_t>(ends ? left : bytes_));
        if (result == SQL_SUCCESS || ends) return Outcome::Text;
    }
}

void ODBCValueBuffer::AppendDigits(String& digits, const void* bytes, std::size_t count) {
    constexpr StringView kDigits = u"0123456789ABCDEF";
    const auto* const all = static_cast<const unsigned char*>(bytes);
    for (std::size_t i = 0; i < count; ++i) {
        digits += kDigits[all[i] / 16];
        digits += kDigits[all[i] % 16];
    }
}

ODBCValueBuffer::Outcome ODBCValueBuffer::ReadBit(void* statement, std::uint16_t number,
                                                  String& text) {
    const Outcome outcome = ReadCut(statement, number, text);
    if (outcome == Outcome::Text) ShowBit(text);
    return outcome;
}

void ODBCValueBuffer::ShowBit(String& text) {
    text = text.empty() || text.front() == u'\0' ? u"0" : u"1";
}

}  // namespace DataStorages
