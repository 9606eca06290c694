#include "providers/database_query.h"

#include "files/format.h"
#include "files/strict_text.h"
#include "files/text.h"
#include "files/text_loader.h"
#include "platform/file_system.h"
#include "storages/sql_dialect.h"

namespace DataProviders {
namespace {

constexpr KeyTable kKeys({
    {.name = u"Query", .meaning = u"the query; macros are replaced in it", .needed = u"query"},
    {.name = u"QueryFile",
     .meaning = u"a file that holds the query, where there is no Query",
     .names = Names::FileRead,
     .needed = u"query"},
    {.name = u"TableName",
     .meaning = u"the table to read, where there is neither",
     .macros = Macros::Replaced,
     .names = Names::Table,
     .needed = u"query"},
    {.name = u"Table",
     .meaning = u"the same, where there is no TableName",
     .macros = Macros::Replaced,
     .names = Names::Table,
     .needed = u"query"},
    {.name = u"EmptyScriptIsNotBug",
     .kind = KeyKind::Flag,
     .edition1 = u"0",
     .edition2 = u"0",
     .meaning = u"let the database say what is wrong with an empty query file"},
});
constexpr Key kQuery = kKeys[u"Query"];
constexpr Key kQueryFile = kKeys[u"QueryFile"];
constexpr Key kTableName = kKeys[u"TableName"];
constexpr Key kTable = kKeys[u"Table"];
constexpr Key kEmptyScriptIsNotBug = kKeys[u"EmptyScriptIsNotBug"];

bool LoadQueryFile(String& error, const SectionSettings& settings, const String& path,
                   String& query) {
    if (!platform::PathExists(path)) {
        error = Format(u"The query file '%s' does not exist or inaccessible.", path);
        return false;
    }
    ErrorRecord load_error;
    String content;
    const bool loaded = settings.Follows(Rule::StrictTexts)
                            ? LoadStrictText(load_error, path, content)
                            : LoadWholeText(load_error, path, content, Encoding::Utf8);
    if (!loaded) {
        error = Format(u"Could not load query file '%s': %s", path, load_error.text);
        return false;
    }
    query = text::Trim(content, text::kBlanksAndLineEnds);
    if (query.empty() && !settings.Flag(kEmptyScriptIsNotBug)) {
        error = Format(u"The query file '%s' is empty", path);
        return false;
    }
    return true;
}

// The query text from the first of the keys that says something.
bool ReadQuery(String& error, const SectionSettings& settings, String& query) {
    query = settings.Text(kQuery);
    if (!query.empty()) return true;
    const String path = settings.Text(kQueryFile);
    if (!path.empty()) return LoadQueryFile(error, settings, path, query);
    String table = settings.Text(kTableName);
    if (table.empty()) table = settings.Text(kTable);
    if (table.empty()) {
        error = u"The database query or table name is not provided.";
        return false;
    }
    query = u"select * from " + table;
    settings.NameTable(table);
    return true;
}

}  // namespace

KeyList DatabaseQuery::Keys() {
    return {kKeys, ReadingKeys(), DataStorages::ConnectionSettings::Keys()};
}

bool DatabaseQuery::ConnectForQuery(String& error, const SectionSettings& settings, String& query) {
    DataStorages::ConnectionSettings connection;
    if (!connection.Read(error, settings,
                         u"The data source or connection string is not provided.") ||
        !ReadQuery(error, settings, query) || !Connect(error, connection, settings)) {
        return false;
    }
    settings.ResolveAllMacros(query);
    return true;
}

bool DatabaseQuery::Open(String& error, const SectionSettings& settings, RowSet& rows) {
    row_follows_columns_ = settings.Follows(Rule::RowFollowsColumns);
    String query;
    if (!ConnectForQuery(error, settings, query) || !RunQuery(error, query, rows)) return false;
    if (settings.Follows(Rule::LoadsAreExact)) ForgetNotNull(settings, rows);
    return true;
}

// SQLite's driver tells of the column of a table behind the result, which a join may leave without
// a row; those of PostgreSQL and MariaDB tell of the result.
void DatabaseQuery::ForgetNotNull(const SectionSettings& settings, RowSet& rows) {
    const bool is_query = !settings.Text(kQuery).empty() || !settings.Text(kQueryFile).empty();
    if (!is_query || sql::DialectOf(database_->Product()) != sql::Dialect::SQLite) return;
    for (ColumnDefinition& column : rows.Columns) column.Nullable = true;
}

bool DatabaseQuery::Describe(String& error, const SectionSettings& settings, RowSet& rows) {
    String query;
    return ConnectForQuery(error, settings, query) && DescribeQuery(error, query, rows);
}

bool DatabaseQuery::HasMoreData(String& error, RowSet& rows) {
    if (!database_) return false;
    const bool more = database_->HasMoreData(error, rows);
    loss_.clear();
    if (!more) NoteLoss(error);
    if (more && row_follows_columns_) rows.ClearRow();
    return more;
}

}  // namespace DataProviders
