#include "consumers/database_schema.h"

#include "consumers/sql_statement.h"
#include "storages/open_database.h"

namespace DataConsumers {
namespace {

constexpr KeyTable kKeys({
    {.name = u"Table", .meaning = u"the table", .macros = Macros::Replaced, .names = Names::Table},
    {.name = u"Delimiter", .meaning = u"what ends a statement"},
});
constexpr Key kTable = kKeys[u"Table"];
constexpr Key kDelimiter = kKeys[u"Delimiter"];

}  // namespace

KeyList DatabaseSchema::Keys() { return {kKeys, DataStorages::ConnectionSettings::Keys()}; }

DatabaseSchema::~DatabaseSchema() {
    if (database_) database_->Close();
}

bool DatabaseSchema::Open(String& error, const SectionSettings& settings) {
    written_size_ = 0;
    statement_.clear();
    database_ = DataStorages::OpenDatabase(
        error, settings, u"The data source name or connect string is not provided");
    if (!database_) return false;
    table_setting_ = settings.Unresolved(kTable);
    table_ = settings.Text(kTable);
    delimiter_ = settings.Text(kDelimiter);
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
