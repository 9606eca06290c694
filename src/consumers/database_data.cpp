#include "consumers/database_data.h"

#include "consumers/sql_statement.h"
#include "files/format.h"
#include "storages/open_database.h"

namespace DataConsumers {
namespace {

constexpr KeyTable kKeys({
    {.name = u"Table",
     .meaning = u"the table",
     .macros = Macros::Replaced,
     .names = Names::Table,
     .needed = u"table"},
    {.name = u"Delimiter", .meaning = u"what ends a statement"},
});
constexpr Key kTable = kKeys[u"Table"];
constexpr Key kDelimiter = kKeys[u"Delimiter"];

}  // namespace

KeyList DatabaseData::Keys() { return {kKeys, DataStorages::ConnectionSettings::Keys()}; }

DatabaseData::~DatabaseData() {
    if (database_) database_->Close();
}

// Reads the settings and connects.
bool DatabaseData::Connect(String& error, const SectionSettings& settings) {
    DataStorages::ConnectionSettings connection;
    if (!connection.Read(error, settings,
                         u"The data source name or connect string is not provided")) {
        return false;
    }
    table_ = settings.Text(kTable);
    if (table_.empty()) {
        error = u"The target table name is not provided";
        return false;
    }
    delimiter_ = settings.Text(kDelimiter);
    database_ = DataStorages::OpenDatabase(error, connection);
    return database_ != nullptr;
}

bool DatabaseData::Open(String& error, const SectionSettings& settings) {
    written_size_ = 0;
    prefix_.clear();
    if (!Connect(error, settings)) return false;
    const bool described = database_->Query(error, u"select * from " + table_, table_rows_);
    database_->CloseQuery();
    if (!described) error = u"Could not retrieve table defintition";  // published spelling
    return described;
}

bool DatabaseData::CheckColumns(String& error, const SectionSettings& settings,
                                const RowSet& rows) {
    if (!Connect(error, settings)) return false;
    if (!database_->Describe(error, u"select * from " + table_, table_rows_)) {
        error = u"Could not retrieve table defintition";
        return false;
    }
    return ColumnsFit(error, rows);
}

bool DatabaseData::ColumnsFit(String& error, const RowSet& rows) const {
    if (rows.Columns.size() == table_rows_.Columns.size()) return true;
    // Published spelling.
    error = Format(u"Traget table has different structure [%d -> %d columns].", rows.Columns.size(),
                   table_rows_.Columns.size());
    return false;
}

bool DatabaseData::Prepare(String& /*error*/, RowSet& /*rows*/) { return true; }

bool DatabaseData::Write(String& error, RowSet& rows) {
    if (!ColumnsFit(error, rows)) return false;
    if (prefix_.empty()) prefix_ = sql::InsertPrefix(table_, table_rows_.Columns, false);
    statement_ = prefix_;
    if (!sql::AppendValueList(error, statement_, rows.Columns, rows.Row)) return false;
    statement_ += delimiter_;
    if (!database_->ExecNonQuery(error, statement_)) return false;
    ++written_size_;
    return true;
}

bool DatabaseData::NextResultSet(String& /*error*/, const SectionSettings& /*settings*/) {
    return false;
}

bool DatabaseData::Close(String& /*error*/) { return database_->Close(); }

}  // namespace DataConsumers
