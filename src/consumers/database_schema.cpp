#include "consumers/database_schema.h"

#include "consumers/sql_statement.h"
#include "storages/open_database.h"

namespace DataConsumers {

DatabaseSchema::~DatabaseSchema() {
    if (database_) database_->Close();
}

bool DatabaseSchema::Open(String& error, const SectionSettings& settings) {
    written_size_ = 0;
    statement_.clear();
    database_ = DataStorages::OpenDatabase(
        error, settings, u"The data source name or connect string is not provided");
    if (!database_) return false;
    table_setting_ = settings.Text(u"Table");
    table_ = settings.ResolvedText(u"Table");
    delimiter_ = settings.Text(u"Delimiter");
    return true;
}

bool DatabaseSchema::Prepare(String& /*error*/, RowSet& /*rows*/) { return false; }

bool DatabaseSchema::Write(String& error, RowSet& rows) {
    const sql::QualifiedName name = sql::NameOfDescribed(table_setting_, table_, rows);
    if (!sql::AppendColumnLine(error, statement_, name, rows.Row)) return false;
    ++written_size_;
    return true;
}

bool DatabaseSchema::NextResultSet(String& /*error*/, const SectionSettings& /*settings*/) {
    return false;
}

bool DatabaseSchema::Close(String& /*error*/) {
    statement_ += u')';
    statement_ += delimiter_;
    statement_ += u"\r\n";
    return database_->Close();
}

}  // namespace DataConsumers
