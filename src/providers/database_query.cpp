#include "providers/database_query.h"

#include "files/dfile.h"
#include "files/format.h"
#include "files/text.h"
#include "platform/console.h"
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

DatabaseQuery::~DatabaseQuery() { Close(); }

bool DatabaseQuery::Open(String& error, const SectionSettings& settings, RowSet& rows) {
    String source = settings.ResolvedText(u"DSN");
    if (source.empty()) source = settings.ResolvedText(u"ConnectString");
    if (source.empty()) {
        error = u"The data source or connection string is not provided.";
        return false;
    }
    String query;
    if (!ReadQuery(error, settings, query)) return false;
    String login = settings.Text(u"Login");
    if (login.empty()) login = settings.Text(u"User");  // where the -Login switch puts it
    Close();
    database_ = std::make_unique<DataStorages::ODBCDatabase>();
    if (!database_->Open(error, source, login, settings.Text(u"Password"))) return false;
    settings.ResolveAllMacros(query);
    if (database_->Query(error, query, rows)) return true;
    error += u"\r\n" + query;
    return false;
}

bool DatabaseQuery::Fetch(String& error, RowSet& rows, bool track_widths) {
    if (!database_) return false;
    const bool fetched = database_->Fetch(error, rows, track_widths);
    if (!fetched && database_->ReadingFailed()) TellOfLostRows();
    return fetched;
}

// A row of the next result set has its own number of values.
bool DatabaseQuery::HasMoreData(String& error, RowSet& rows) {
    if (!database_) return false;
    const bool more = database_->HasMoreData(error, rows);
    if (more) rows.ClearRow();
    if (!more && database_->ReadingFailed()) TellOfLostRows();
    return more;
}

// The step takes a failure while reading for the end of the data. Whoever watches the job must be
// able to find out.
void DatabaseQuery::TellOfLostRows() const {
    platform::WriteErrorText(
        Format(u"Warning: reading from the database failed: %s\n", database_->LastError()));
}

bool DatabaseQuery::Close() { return database_ && database_->Close(); }

}  // namespace DataProviders
