#include "providers/database_query.h"

#include "files/dfile.h"
#include "files/format.h"
#include "files/text.h"
#include "platform/file_system.h"

namespace DataProviders {
namespace {

bool LoadQueryFile(String& error, const SectionSettings& settings, const String& path,
                   String& query) {
    if (!platform::PathExists(path)) {
        error = Format(u"The query file '%s' does not exist or inaccessible.", path);
        return false;
    }
    ErrorRecord load_error;
    String content;
    if (!dFile::LoadText(load_error, path, content)) {
        error = Format(u"Could not load query file '%s': %s", path, load_error.text);
        return false;
    }
    query = text::Trim(content, text::kBlanksAndLineEnds);
    if (query.empty() && !settings.Flag(u"EmptyScriptIsNotBug", false)) {
        error = Format(u"The query file '%s' is empty", path);
        return false;
    }
    return true;
}

// The query text from the first of the keys that says something.
bool ReadQuery(String& error, const SectionSettings& settings, String& query) {
    query = settings.Text(u"Query");
    if (!query.empty()) return true;
    const String path = settings.Text(u"QueryFile");
    if (!path.empty()) return LoadQueryFile(error, settings, path, query);
    String table = settings.ResolvedText(u"TableName");
    if (table.empty()) table = settings.ResolvedText(u"Table");
    if (table.empty()) {
        error = u"The database query or table name is not provided.";
        return false;
    }
    query = u"select * from " + table;
    settings.Set(u"$TABLE$", table);
    return true;
}

}  // namespace

bool DatabaseQuery::Open(String& error, const SectionSettings& settings, RowSet& rows) {
    DataStorages::ConnectionSettings connection;
    if (!connection.Read(error, settings,
                         u"The data source or connection string is not provided.")) {
        return false;
    }
    String query;
    if (!ReadQuery(error, settings, query) || !Connect(error, connection)) return false;
    settings.ResolveAllMacros(query);
    return RunQuery(error, query, rows);
}

bool DatabaseQuery::HasMoreData(String& error, RowSet& rows) {
    if (!database_) return false;
    const bool more = database_->HasMoreData(error, rows);
    if (more && row_follows_columns_) rows.ClearRow();
    if (!more) TellOfLostRows();
    return more;
}

}  // namespace DataProviders
