// What the calls of ODBC need on their way in and out. For .cpp files only.
#pragma once

#include <algorithm>
#include <array>
#include <string>

#include "base/strings.h"
#include "platform/odbc.h"

namespace DataStorages::odbc {

// ODBC takes texts that it does not change through pointers to non-constant units.
inline SQLWCHAR* Wide(const char16_t* text) {
    return reinterpret_cast<SQLWCHAR*>(const_cast<char16_t*>(text));
}
inline SQLWCHAR* Wide(const String& text) { return Wide(text.c_str()); }
inline SQLCHAR* Bytes(std::string& bytes) { return reinterpret_cast<SQLCHAR*>(bytes.data()); }

// Some driver managers count text in short numbers, and some of those count past its end.
template <class Characters>
SQLSMALLINT LengthOf(const Characters& text) {
    return static_cast<SQLSMALLINT>(text.size());
}

// The room for text in a buffer, without the zero that ends it. In whole characters: some driver
// managers refuse an odd number of bytes.
template <std::size_t N>
SQLSMALLINT RoomInBytes(const std::array<char16_t, N>& /*buffer*/) {
    return static_cast<SQLSMALLINT>((N - 1) * sizeof(char16_t));
}

// The text in a buffer that a driver was to end with a zero.
template <std::size_t N>
String TextOf(const std::array<char16_t, N>& buffer) {
    return {buffer.begin(), std::find(buffer.begin(), buffer.end(), u'\0')};
}

inline bool Succeeded(SQLRETURN result) {
    return result == SQL_SUCCESS || result == SQL_SUCCESS_WITH_INFO;
}

// A statement that changes no row ends with SQL_NO_DATA (ODBC reference, SQLExecDirect), and so
// does the reading of rows.
inline bool SucceededOrNoData(SQLRETURN result) {
    return Succeeded(result) || result == SQL_NO_DATA;
}

// A text that the driver or its connection tells of itself; empty when it does not.
String InfoText(void* connection, SQLUSMALLINT what);

// The driver's last diagnostic of the lowest handle that is not null: message, SQLSTATE and native
// error number, separated by commas.
String Diagnostic(void* environment, void* connection, void* statement);

// Prepares a statement.
// narrow: the driver has no wide calls
bool Prepare(void* statement, const String& text, bool narrow);

bool IsAscii(StringView text);

// True for a text that has to reach a driver without wide calls as UTF-8. unixODBC narrows the
// text of a wide call for such a driver. As soon as it holds a character beyond the basic plane,
// the low byte of every character is all that is kept: values are lost, and some of them turn into
// quotes, which lets them out of their literals. In UTF-8 no character has the byte of a quote.
bool SpoiltByNarrowing(StringView text);

}  // namespace DataStorages::odbc
