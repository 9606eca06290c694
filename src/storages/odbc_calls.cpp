#include "storages/odbc_calls.h"

#include "base/utf8.h"
#include "files/format.h"

namespace DataStorages::odbc {
namespace {

constexpr std::size_t kMessageCharacters = 512;
constexpr std::size_t kStateCharacters = 5;
constexpr std::size_t kDiagnosticCharacters = 543;

}  // namespace

String InfoText(void* connection, SQLUSMALLINT what) {
    std::array<char16_t, 255> text{};
    SQLSMALLINT length = 0;
    const bool known =
        Succeeded(SQLGetInfoW(connection, what, text.data(), RoomInBytes(text), &length));
    return known ? TextOf(text) : String{};
}

String Diagnostic(void* environment, void* connection, void* statement) {
    std::array<char16_t, kMessageCharacters> message{};
    std::array<char16_t, kStateCharacters + 1> state{};
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    SQLErrorW(environment, connection, statement, Wide(state.data()), &native, Wide(message.data()),
              LengthOf(message), &length);
    message.back() = state.back() = u'\0';
    String text = Format(u"%s,%s,%d", TextOf(message), TextOf(state), native);
    if (text.size() > kDiagnosticCharacters) text.resize(kDiagnosticCharacters);
    return text;
}

bool Prepare(void* statement, const String& text, bool narrow) {
    if (!narrow || !SpoiltByNarrowing(text)) {
        return Succeeded(SQLPrepareW(statement, Wide(text), SQL_NTS));
    }
    std::string bytes = ToUtf8(text);
    return Succeeded(SQLPrepare(statement, Bytes(bytes), SQL_NTS));
}

bool IsAscii(StringView text) {
    return std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; });
}

bool SpoiltByNarrowing(StringView text) {
    const auto is_surrogate = [](char16_t unit) { return unit >= 0xD800 && unit <= 0xDFFF; };
    return std::any_of(text.begin(), text.end(), is_surrogate);
}

}  // namespace DataStorages::odbc
