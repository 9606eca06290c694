#include "storages/odbc_environment.h"

#include "base/utf8.h"
#include "files/text.h"
#include "platform/driver_library.h"
#include "storages/odbc_calls.h"

namespace DataStorages {
namespace {

constexpr StringView kDriverKey = u"Driver=";
constexpr std::size_t kNameCharacters = 255;
constexpr std::size_t kAttributesCharacters = 8'192;

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

// What a connect string says of its driver: a name, perhaps in braces, or a library.
String DriverIn(StringView connect_string) {
    StringView value = connect_string.substr(connect_string.find(kDriverKey) + kDriverKey.size());
    if (value.starts_with(u'{')) return String(value.substr(1, value.find(u'}') - 1));
    return String(value.substr(0, value.find(u';')));
}

}  // namespace

bool IsConnectString(const String& source) { return source.find(kDriverKey) != String::npos; }

ODBCEnvironment::ODBCEnvironment() : handle_(ODBCHandle::Kind::Environment, nullptr) {
    const std::uintptr_t version = SQL_OV_ODBC3;  // a number, passed as a pointer
    // NOLINTNEXTLINE(performance-no-int-to-ptr): ODBC's interface
    auto* const value = reinterpret_cast<SQLPOINTER>(version);
    if (handle_) SQLSetEnvAttr(handle_.Get(), SQL_ATTR_ODBC_VERSION, value, 0);
}

bool ODBCEnvironment::Exists(String& error) const {
    if (!handle_) error = u"ODBC subsystem is not initialized properly";
    return static_cast<bool>(handle_);
}

bool ODBCEnvironment::DataSources(String& error, bool of_system, bool of_user,
                                  std::vector<TableEntry>& sources) const {
    if (!Exists(error)) return false;
    sources.clear();
    if (of_system) ListDataSources(SQL_FETCH_FIRST_SYSTEM, 1, sources);
    if (of_user) ListDataSources(SQL_FETCH_FIRST_USER, 0, sources);
    return true;
}

void ODBCEnvironment::ListDataSources(std::uint16_t first, std::uint8_t flag,
                                      std::vector<TableEntry>& sources) const {
    std::array<char16_t, kNameCharacters> name{};
    std::array<char16_t, kNameCharacters> driver{};
    SQLSMALLINT length = 0;
    for (SQLUSMALLINT direction = first;; direction = SQL_FETCH_NEXT) {
        const SQLRETURN result =
            SQLDataSourcesW(handle_.Get(), direction, odbc::Wide(name.data()), odbc::LengthOf(name),
                            &length, odbc::Wide(driver.data()), odbc::LengthOf(driver), &length);
        if (!odbc::Succeeded(result)) return;
        sources.push_back({odbc::TextOf(name), odbc::TextOf(driver), flag});
    }
}

bool ODBCEnvironment::Drivers(String& error, std::vector<DriverEntry>& drivers) const {
    if (!Exists(error)) return false;
    drivers.clear();
    std::array<char16_t, kNameCharacters> name{};
    std::array<char16_t, kAttributesCharacters> attributes{};
    SQLSMALLINT length = 0;
    for (SQLUSMALLINT direction = SQL_FETCH_FIRST;; direction = SQL_FETCH_NEXT) {
        const SQLRETURN result = SQLDriversW(
            handle_.Get(), direction, odbc::Wide(name.data()), odbc::LengthOf(name), &length,
            odbc::Wide(attributes.data()), odbc::LengthOf(attributes), &length);
        if (!odbc::Succeeded(result)) return true;
        drivers.push_back({odbc::TextOf(name), JoinedTexts(attributes)});
    }
}

std::optional<TableEntry> ODBCEnvironment::FindDataSource(const String& name) const {
    String ignored;
    std::vector<TableEntry> sources;
    DataSources(ignored, true, true, sources);
    for (TableEntry& source : sources) {
        if (text::EqualsIgnoringCase(source.Name, name)) return std::move(source);
    }
    return std::nullopt;
}

// name: of an installed driver, or the path of a library
bool ODBCEnvironment::IsNarrowDriver(const String& name) const {
    String ignored;
    String library = name;
    std::vector<DriverEntry> drivers;
    Drivers(ignored, drivers);
    for (const DriverEntry& driver : drivers) {
        if (!text::EqualsIgnoringCase(driver.Name, name)) continue;
        library = platform::DriverLibrary(driver.Name, driver.Attributes);
    }
    return !platform::LibraryTakesWideText(library);
}

bool ODBCEnvironment::MustConnectNarrow(const String& source, const String& login,
                                        const String& password) const {
    if (odbc::IsAscii(source + login + password)) return false;
    if (IsConnectString(source)) return IsNarrowDriver(DriverIn(source));
    const std::optional<TableEntry> listed = FindDataSource(source);
    // unixODBC takes and lists names as one character for each of their bytes. A job may have
    // written such a name down as it is listed.
    if (!listed) return FindDataSource(text::Widen(ToUtf8(source))).has_value();
    return odbc::IsAscii(source) && IsNarrowDriver(listed->Detail);
}

}  // namespace DataStorages
