#include "storages/odbc_catalogue.h"

#include <utility>

#include "base/utf8.h"
#include "files/text.h"
#include "storages/column_default.h"
#include "storages/odbc_calls.h"

namespace DataStorages {
namespace {

constexpr std::int32_t kBufferBytes = 32'728;

ColumnKind KindOf(const CatalogColumn& column) {
    ColumnDefinition definition;
    definition.TypeName = column.TypeName;
    definition.ConciseType = static_cast<std::int32_t>(text::ToInteger(column.TypeCode));
    return ::KindOf(definition);
}

// PostgreSQL's driver tells there what has been declared behind a type, beyond the columns of ODBC.
constexpr std::uint16_t kTypeModifier = 25;

bool HasTypeModifier(void* statement) {
    std::array<char16_t, 16> name{};
    SQLSMALLINT length = 0;
    return odbc::Succeeded(SQLColAttributeW(statement, kTypeModifier, SQL_DESC_NAME, name.data(),
                                            odbc::RoomInBytes(name), &length, nullptr)) &&
           odbc::TextOf(name) == u"TYPMOD";
}

// A text without a size is told as one of 255 characters, bits with less than they are.
bool IsGuessedSize(StringView type_name, StringView modifier) {
    return type_name == u"varbit" || (type_name == u"varchar" && modifier == u"-1");
}

}  // namespace

ODBCCatalogue::ODBCCatalogue(void* connection, void* statement, bool narrow_driver,
                             ODBCValueBuffer& buffer)
    : connection_(connection),
      statement_(statement),
      narrow_driver_(narrow_driver),
      buffer_(buffer) {}

ODBCCatalogue::Row ODBCCatalogue::NextRow(std::initializer_list<std::uint16_t> numbers,
                                          std::vector<String>& texts) {
    const SQLRETURN result = SQLFetch(statement_);
    if (!odbc::Succeeded(result)) return result == SQL_NO_DATA ? Row::None : Row::Failed;
    texts.clear();
    for (const std::uint16_t number : numbers) {
        StringView text;
        const auto read = buffer_.Read(statement_, number, kBufferBytes, text);
        if (read == ODBCValueBuffer::Outcome::Failed) return Row::Failed;
        texts.emplace_back(text);  // which NULL leaves empty
    }
    return Row::Read;
}

// ---- Tables ----

// The database that is connected, where databases are the catalogues of a server.
String ODBCCatalogue::CurrentCatalog() const {
    std::array<char16_t, 255> name{};
    SQLINTEGER length = 0;
    SQLGetConnectAttrW(connection_, SQL_ATTR_CURRENT_CATALOG, name.data(), odbc::RoomInBytes(name),
                       &length);
    return odbc::TextOf(name);
}

// True when the driver lists a catalogue of this name.
bool ODBCCatalogue::HasCatalog(const String& name) {
    SQLFreeStmt(statement_, SQL_CLOSE);
    // "%" beside empty names asks for the catalogues (ODBC reference, SQLTables).
    const auto none = odbc::Wide(u"");
    if (!odbc::Succeeded(SQLTablesW(statement_, odbc::Wide(u"%"), SQL_NTS, none, SQL_NTS, none,
                                    SQL_NTS, none, SQL_NTS))) {
        return false;
    }
    std::vector<String> catalog;
    while (NextRow({1}, catalog) == Row::Read) {
        if (text::EqualsIgnoringCase(catalog[0], name)) return true;
    }
    return false;
}

// Some drivers list the tables of all databases of the server; only the connected one is asked for.
bool ODBCCatalogue::ListTables(std::vector<TableEntry>& tables, TableKind kind) {
    const String current = CurrentCatalog();
    const char16_t* const type = kind == TableKind::Views ? u"VIEW" : u"TABLE";
    if (!odbc::Succeeded(SQLTablesW(statement_, nullptr, 0, nullptr, 0, nullptr, 0,
                                    odbc::Wide(type), SQL_NTS))) {
        return false;
    }
    std::vector<String> row;
    std::vector<String> catalogs;  // of the tables
    Row read = Row::None;
    while ((read = NextRow({1, 2, 3}, row)) == Row::Read) {
        catalogs.push_back(std::move(row[0]));
        tables.push_back({std::move(row[2]), std::move(row[1]), 0});
    }
    if (read == Row::Failed) return false;
    if (current.empty() || tables.empty()) return true;
    // Drivers that have no name to tell say nothing, or a word ("null"), which must not leave every
    // table out. A database without tables is not among theirs, but among the server's.
    const auto is_current = [&](const String& name) {
        return text::EqualsIgnoringCase(name, current);
    };
    const bool is_known =
        std::any_of(catalogs.begin(), catalogs.end(), is_current) || HasCatalog(current);
    if (is_known) DropOtherCatalogs(current, catalogs, tables);
    return true;
}

void DropOtherCatalogs(const String& current, const std::vector<String>& catalogs,
                       std::vector<TableEntry>& tables) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < tables.size(); ++i) {
        if (!catalogs[i].empty() && !text::EqualsIgnoringCase(catalogs[i], current)) continue;
        if (kept != i) tables[kept] = std::move(tables[i]);
        ++kept;
    }
    tables.resize(kept);
}

// ---- Columns ----

// `name` as a search pattern that matches only itself, where the driver has an escape character.
String ODBCCatalogue::SearchPattern(const String& name) const {
    const String escape = odbc::InfoText(connection_, SQL_SEARCH_PATTERN_ESCAPE);
    if (escape.empty()) return name;
    String pattern;
    for (const char16_t unit : name) {
        // The escape character is special itself (ODBC reference, Pattern Value Arguments).
        const bool is_special = unit == u'_' || unit == u'%' || escape.find(unit) != String::npos;
        if (is_special) pattern += escape;
        pattern += unit;
    }
    return pattern;
}

bool ODBCCatalogue::AskForColumns(const String& schema, const String& table) {
    if (!narrow_driver_ || !odbc::SpoiltByNarrowing(schema + table)) {
        return odbc::Succeeded(SQLColumnsW(statement_, nullptr, 0,
                                           schema.empty() ? nullptr : odbc::Wide(schema), SQL_NTS,
                                           odbc::Wide(table), SQL_NTS, nullptr, 0));
    }
    std::string narrow_schema = ToUtf8(schema);
    std::string narrow_table = ToUtf8(table);
    return odbc::Succeeded(SQLColumns(statement_, nullptr, 0,
                                      schema.empty() ? nullptr : odbc::Bytes(narrow_schema),
                                      SQL_NTS, odbc::Bytes(narrow_table), SQL_NTS, nullptr, 0));
}

bool ODBCCatalogue::ListColumns(const String& schema, const String& table,
                                std::vector<CatalogColumn>& columns) {
    if (!AskForColumns(SearchPattern(schema), SearchPattern(table))) return false;
    const sql::Dialect dialect = sql::DialectOf(odbc::InfoText(connection_, SQL_DBMS_NAME));
    const bool has_modifier = dialect == sql::Dialect::PostgreSQL && HasTypeModifier(statement_);
    std::vector<String> row;
    const auto next_row = [&] {
        return has_modifier ? NextRow({3, 4, 5, 6, 7, 8, 9, 11, 13, kTypeModifier}, row)
                            : NextRow({3, 4, 5, 6, 7, 8, 9, 11, 13}, row);
    };
    Row read = Row::None;
    while ((read = next_row()) == Row::Read) {
        CatalogColumn& column = columns.emplace_back();
        column.Table = std::move(row[0]);
        column.Column = std::move(row[1]);
        column.TypeCode = std::move(row[2]);
        column.TypeName = std::move(row[3]);
        column.Size = std::move(row[4]);
        column.OctetLength = std::move(row[5]);
        column.Digits = std::move(row[6]);
        column.Nullable = std::move(row[7]);
        column.Default = std::move(row[8]);
        column.Unsized = has_modifier && IsGuessedSize(column.TypeName, row[9]);
        column.DefaultValue = sql::DefaultValue(dialect, KindOf(column), column.Default);
    }
    return read == Row::None;
}

}  // namespace DataStorages
