#include "providers/database_content.h"

#include "base/notices.h"
#include "files/format.h"
#include "files/text.h"
#include "storages/identifier.h"

namespace DataProviders {
namespace {

constexpr KeyTable kKeys({
    {.name = u"Tables",
     .edition1 = u"*",
     .edition2 = u"*",
     .meaning = u"the tables, with commas between them; * for all",
     .names = Names::Tables},
    {.name = u"MissingTables",
     .kind = KeyKind::Word,
     .words = u"End Skip Stop",
     .edition1 = u"End",
     .edition2 = u"Stop",
     .meaning = u"a table that cannot be read ends the rows, is left out, or fails the step",
     .since = Since::Later},
});
constexpr Key kTables = kKeys[u"Tables"];
constexpr Key kMissingTables = kKeys[u"MissingTables"];

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

// Its names for what it makes itself: no other table may have one, so no target takes them.
bool IsOwnOfSqlite(const TableEntry& table) {
    return text::Lowered(table.Name).starts_with(u"sqlite_");
}

void WarnOfLoss(const String& reason) {
    TellNotice(Format(u"Warning: reading from the database failed: %s\n", reason));
}

}  // namespace

KeyList DatabaseContent::Keys() {
    return {kKeys, ReadingKeys(), DataStorages::ConnectionSettings::Keys()};
}

bool DatabaseContent::OpenList(String& error, const SectionSettings& settings) {
    settings_ = settings;
    tables_.clear();
    next_ = 0;
    missing_tables_ = settings.Word(kMissingTables, MissingTables::End);
    loss_fails_step_ = false;
    DataStorages::ConnectionSettings connection;
    if (!connection.Read(error, settings,
                         u"The database type or connection type is not supported yet") ||
        !Connect(error, connection, settings)) {
        return false;
    }
    if (settings.Follows(Rule::DriversQuotes)) quote_ = database_->IdentifierQuote();
    return ListTables(error, settings.Text(kTables));
}

bool DatabaseContent::Open(String& error, const SectionSettings& settings, RowSet& rows) {
    return OpenList(error, settings) && HasMoreData(error, rows);
}

bool DatabaseContent::Describe(String& error, const SectionSettings& settings, RowSet& rows) {
    return OpenList(error, settings) && !tables_.empty() &&
           DescribeQuery(error, NameNext(tables_.front(), rows), rows);
}

bool DatabaseContent::ListTables(String& error, const String& names) {
    if (names != u"*") return ParseNames(error, names, tables_);
    if (!database_->Tables(error, tables_, DataStorages::TableKind::Tables)) return false;
    if (settings_->Follows(Rule::LoadsAreExact) && database_->Product() == u"SQLite") {
        std::erase_if(tables_, IsOwnOfSqlite);
    }
    if (!tables_.empty() || missing_tables_ == MissingTables::End) return true;
    error = u"The database has no tables.";
    return false;
}

// A table that breaks off is no error of the step's own: the next one may follow.
bool DatabaseContent::Fetch(String& /*error*/, RowSet& rows, bool track_widths) {
    String reason;
    return DatabaseSource::Fetch(reason, rows, track_widths);
}

bool DatabaseContent::HasMoreData(String& error, RowSet& rows) {
    loss_.clear();
    while (database_ && next_ != tables_.size()) {
        const TableEntry& table = tables_[next_++];
        if (SelectTable(error, table, rows)) return true;
        if (missing_tables_ == MissingTables::Skip) {
            WarnOfLoss(error);
            error.clear();
            continue;
        }
        loss_fails_step_ = missing_tables_ == MissingTables::Stop;
        if (loss_fails_step_) loss_ = error;
        return false;
    }
    return false;
}

String DatabaseContent::NameNext(const TableEntry& table, RowSet& rows) {
    String query = u"select * from ";
    if (!table.Detail.empty()) {
        sql::AppendIdentifier(query, table.Detail, quote_);
        query += u'.';
    }
    sql::AppendIdentifier(query, table.Name, quote_);
    rows.SchemaName = table.Detail;
    rows.TableName = table.Name;
    settings_->NameTable(table.Name, table.Detail);
    return query;
}

bool DatabaseContent::SelectTable(String& error, const TableEntry& table, RowSet& rows) {
    const String query = NameNext(table, rows);
    rows.ClearRow();
    return RunQuery(error, query, rows);
}

}  // namespace DataProviders
