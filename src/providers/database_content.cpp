#include "providers/database_content.h"

#include "files/format.h"
#include "storages/identifier.h"

namespace DataProviders {
namespace {

using DataStorages::TableEntry;

// Takes one name off the start of a list, up to a comma, which goes. Double quotes and brackets
// enclose what is taken as it is; outside them a full stop ends the schema. Nothing is trimmed.
// False for a name whose quotes or brackets stay open; `names` is then left alone.
bool TakeName(StringView& names, TableEntry& entry) {
    char16_t closing = 0;  // of the quotes or brackets that we are in
    std::size_t i = 0;
    for (; i < names.size() && (closing != 0 || names[i] != u','); ++i) {
        const char16_t unit = names[i];
        if (closing != 0 && unit == closing) {
            closing = 0;
        } else if (closing != 0 || (unit != u'"' && unit != u'[' && unit != u'.')) {
            entry.Name += unit;
        } else if (unit == u'.') {
            entry.Detail = std::move(entry.Name);
            entry.Name.clear();
        } else {
            closing = unit == u'[' ? u']' : u'"';
        }
    }
    if (closing != 0) return false;
    names.remove_prefix(i);
    return true;
}

bool ParseNames(String& error, StringView names, std::vector<TableEntry>& tables) {
    for (;;) {
        TableEntry entry;
        if (!TakeName(names, entry)) {
            error = Format(u"Could not parse name '%s'", names);
            return false;
        }
        tables.push_back(std::move(entry));
        if (names.empty()) return true;
        names.remove_prefix(1);  // the comma
    }
}

}  // namespace

bool DatabaseContent::Open(String& error, const SectionSettings& settings, RowSet& rows) {
    settings_ = settings;
    tables_.clear();
    next_ = 0;
    DataStorages::ConnectionSettings connection;
    return connection.Read(error, settings,
                           u"The database type or connection type is not supported yet") &&
           Connect(error, connection) && ListTables(error, settings.Text(u"Tables", u"*")) &&
           HasMoreData(error, rows);
}

bool DatabaseContent::ListTables(String& error, const String& names) {
    if (names != u"*") return ParseNames(error, names, tables_);
    return database_->Tables(error, tables_, DataStorages::TableKind::Tables);
}

bool DatabaseContent::HasMoreData(String& error, RowSet& rows) {
    if (!error.empty()) TellOfLostRows(error);  // of the table before
    error.clear();
    if (!database_ || next_ == tables_.size()) return false;
    const TableEntry& table = tables_[next_++];
    String query = u"select * from ";
    if (!table.Detail.empty()) {
        sql::AppendIdentifier(query, table.Detail, quote_);
        query += u'.';
    }
    sql::AppendIdentifier(query, table.Name, quote_);
    rows.SchemaName = table.Detail;
    rows.TableName = table.Name;
    settings_->Set(u"$TABLE$", table.Name);
    rows.ClearRow();
    return RunQuery(error, query, rows);
}

}  // namespace DataProviders
