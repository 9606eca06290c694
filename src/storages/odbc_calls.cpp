#include "storages/odbc_calls.h"

namespace DataStorages::odbc {

String InfoText(void* connection, SQLUSMALLINT what) {
    std::array<char16_t, 255> text{};
    SQLSMALLINT length = 0;
    const bool known =
        Succeeded(SQLGetInfoW(connection, what, text.data(), RoomInBytes(text), &length));
    return known ? TextOf(text) : String{};
}

bool IsAscii(StringView text) {
    return std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; });
}

bool SpoiltByNarrowing(StringView text) {
    const auto is_surrogate = [](char16_t unit) { return unit >= 0xD800 && unit <= 0xDFFF; };
    return std::any_of(text.begin(), text.end(), is_surrogate);
}

}  // namespace DataStorages::odbc
