#include "consumers/database_data.h"

#include <algorithm>
#include <new>

#include "base/utf8.h"
#include "consumers/column_match.h"
#include "consumers/literal_rows.h"
#include "consumers/sql_statement.h"
#include "files/format.h"
#include "files/text.h"
#include "storages/open_database.h"

namespace DataConsumers {
namespace {

constexpr KeyTable kKeys({
    {.name = u"Table",
     .meaning = u"the table; macros are replaced for each result set, see TablePerResultSet",
     .macros = Macros::Replaced,
     .names = Names::Table,
     .needed = u"table"},
    {.name = u"Delimiter", .meaning = u"what ends a statement", .own = true},
    {.name = u"InsertMode",
     .kind = KeyKind::Word,
     .words = u"Literal Bound",
     .edition1 = u"Literal",
     .edition2 = u"Bound",
     .meaning = u"values as literals in the text of statements, or as their parameters",
     .since = Since::Later},
    {.name = u"InsertRows",
     .kind = KeyKind::Number,
     .edition1 = u"1",
     .edition2 = u"0",
     .meaning = u"rows a statement; 0: what suits the driver",
     .since = Since::Later},
    {.name = u"CommitRows",
     .kind = KeyKind::Number,
     .edition1 = u"1",
     .edition2 = u"0",
     .meaning = u"rows a transaction; 0: the whole step is one",
     .since = Since::Later},
    {.name = u"ColumnList",
     .kind = KeyKind::Flag,
     .edition1 = u"0",
     .edition2 = u"1",
     .meaning = u"columns go to those of the same name, else to those in the same place",
     .since = Since::Later},
    {.name = u"CreateTable",
     .kind = KeyKind::Flag,
     .edition1 = u"0",
     .edition2 = u"0",
     .meaning = u"make the table when it is missing, from the source's columns",
     .since = Since::Later},
    {.name = u"SqlDialect",
     .kind = KeyKind::Word,
     .words = sql::kDialectWords,
     .edition1 = u"Plain",
     .edition2 = u"Connected",
     .meaning = u"how names, literals and types are written; Connected: as the database has them",
     .since = Since::Later},
    {.name = u"TablePerResultSet",
     .kind = KeyKind::Flag,
     .edition1 = u"0",
     .edition2 = u"1",
     .meaning = u"read Table anew for each result set, so that $TABLE$ follows the source",
     .since = Since::Later},
    {.name = u"OnBadRow",
     .kind = KeyKind::Word,
     .words = u"Skip Stop Reject",
     .edition1 = u"Stop",
     .edition2 = u"Stop",
     .meaning = u"what becomes of a row that the database refuses",
     .since = Since::Later},
    {.name = u"RejectFile",
     .meaning = u"the file for the rows that OnBadRow=Reject sets aside",
     .macros = Macros::Replaced,
     .since = Since::Later,
     .names = Names::FileAside},
    {.name = u"MaxRejects",
     .kind = KeyKind::Number,
     .edition1 = u"1000",
     .edition2 = u"1000",
     .meaning = u"how many rows may be set aside; one more fails the step",
     .since = Since::Later},
});
constexpr Key kTable = kKeys[u"Table"];
constexpr Key kDelimiter = kKeys[u"Delimiter"];
constexpr Key kInsertMode = kKeys[u"InsertMode"];
constexpr Key kInsertRows = kKeys[u"InsertRows"];
constexpr Key kCommitRows = kKeys[u"CommitRows"];
constexpr Key kColumnList = kKeys[u"ColumnList"];
constexpr Key kCreateTable = kKeys[u"CreateTable"];
constexpr Key kSqlDialect = kKeys[u"SqlDialect"];
constexpr Key kTablePerResultSet = kKeys[u"TablePerResultSet"];
constexpr Key kOnBadRow = kKeys[u"OnBadRow"];
constexpr Key kRejectFile = kKeys[u"RejectFile"];
constexpr Key kMaxRejects = kKeys[u"MaxRejects"];

// These find a table by its name in another letter case; MariaDB does so on some systems.
bool FoldsNames(StringView product) {
    const sql::Dialect dialect = sql::DialectOf(product);
    return dialect == sql::Dialect::SQLite || dialect == sql::Dialect::MySQL;
}

}  // namespace

KeyList DatabaseData::Keys() { return {kKeys, DataStorages::ConnectionSettings::Keys()}; }

DatabaseData::~DatabaseData() {
    try {
        TakeBack();
    } catch (const std::bad_alloc&) {
        // The end of the connection takes back what its transaction holds.
    }
}

// ---- Opening ----

bool DatabaseData::ReadSettings(String& error, const SectionSettings& settings) {
    settings_ = settings;
    if (!connection_.Read(error, settings,
                          u"The data source name or connect string is not provided")) {
        return false;
    }
    if (settings.Text(kTable).empty()) {
        error = u"The target table name is not provided";
        return false;
    }
    delimiter_ = settings.Text(kDelimiter);
    insert_mode_ = settings.Word(kInsertMode, InsertMode::Literal);
    insert_rows_ = static_cast<std::size_t>(settings.Number(kInsertRows));
    by_name_ = settings.Flag(kColumnList);
    create_table_ = settings.Flag(kCreateTable);
    table_per_result_set_ = settings.Flag(kTablePerResultSet);
    removed_count_ = insert_mode_ == InsertMode::Literal;
    return ReadLoadRules(error, settings);
}

bool DatabaseData::ReadLoadRules(String& error, const SectionSettings& settings) {
    rules_.commit_rows = static_cast<std::uint64_t>(settings.Number(kCommitRows));
    rules_.bad_row = settings.Word(kOnBadRow, TableLoad::BadRow::Stop);
    rules_.reject_file = settings.Text(kRejectFile);
    rules_.most_rejects = static_cast<std::uint64_t>(settings.Number(kMaxRejects));
    if (rules_.bad_row != TableLoad::BadRow::Reject || !rules_.reject_file.empty()) return true;
    error = u"OnBadRow=Reject needs a RejectFile.";
    return false;
}

bool DatabaseData::Connect(String& error, const SectionSettings& settings) {
    if (!ReadSettings(error, settings)) return false;
    database_ = DataStorages::OpenDatabase(error, connection_);
    if (!database_) return false;
    ChooseDialect(settings.Word(kSqlDialect, sql::Dialect::Plain));
    return MakeStrict(error);
}

bool DatabaseData::IsExactMySql() const {
    return settings_->Follows(Rule::LoadsAreExact) &&
           sql::DialectOf(database_->Product()) == sql::Dialect::MySQL;
}

// Without these modes texts and numbers may be cut, in tables without transactions even under
// STRICT_TRANS_TABLES, and a 0 becomes the next number of a key. The backslashes of the dialect's
// literals are doubled, so they must be escapes.
bool DatabaseData::MakeStrict(String& error) {
    if (!IsExactMySql()) return true;
    const String mode =
        dialect_ == nullptr ? u"@@sql_mode" : u"replace(@@sql_mode,'NO_BACKSLASH_ESCAPES','')";
    return database_->ExecNonQuery(
        error, Format(u"set sql_mode=concat(%s,',STRICT_ALL_TABLES,NO_AUTO_VALUE_ON_ZERO')", mode));
}

// Not all tables of a database with transactions have them. What such a table has taken of a
// statement that is refused stays, and would come a second time. An unknown answer, for a view as
// an example, is no refusal.
bool DatabaseData::TakesRowsBack(String& error) {
    if (rules_.commit_rows == 1 || name_.empty() || !IsExactMySql()) return true;
    String query =
        u"select e.transactions from information_schema.tables t join information_schema.engines e "
        u"on e.engine=t.engine where t.table_name=";
    connected_->AppendText(query, name_.back());
    query += u" and t.table_schema=";
    if (name_.size() == 1) {
        query += u"database()";
    } else {
        connected_->AppendText(query, name_[name_.size() - 2]);
    }
    String ignored;
    RowSet told;
    const bool refuses = database_->Query(ignored, query, told) &&
                         database_->Fetch(ignored, told, false) && told.Row.front().Text == u"NO";
    database_->CloseQuery();
    if (refuses) error = Format(u"Table %s has no transactions: set CommitRows=1.", table_);
    return !refuses;
}

void DatabaseData::ChooseDialect(sql::Dialect dialect) {
    const sql::Dialect connected = sql::DialectOf(database_->Product());
    const bool has_words = dialect != sql::Dialect::Plain && dialect != sql::Dialect::Connected;
    connected_.emplace(sql::SqlDialect::Of(connected));
    const bool is_used = create_table_ || dialect == sql::Dialect::Connected;
    if (is_used && connected == sql::Dialect::ANSI) {  // as what is not known
        connected_.emplace(connected_->WithQuotes(database_->IdentifierQuote()));
    }
    const sql::SqlDialect& words = has_words ? sql::SqlDialect::Of(dialect) : *connected_;
    maker_.emplace(*database_, connection_, words);
    dialect_ = dialect == sql::Dialect::Plain ? nullptr : &words;
}

bool DatabaseData::Open(String& error, const SectionSettings& settings) {
    written_size_ = 0;
    origins_.clear();
    if (!Connect(error, settings) || !load_.Open(error, *database_, rules_)) return false;
    return FindTable(error);
}

// Names the table as statements do.
void DatabaseData::NameTable() {
    begun_ = false;
    const sql::TableSetting table(*settings_, kTable);
    name_ = table.Name();
    table_.clear();
    if (dialect_ == nullptr) {
        table_ = table.Text();
    } else {
        dialect_->AppendName(table_, name_);
    }
}

// A table that is missing may be made when the columns are known; a failed statement must not spoil
// the transaction.
bool DatabaseData::FindTable(String& error) {
    NameTable();
    is_missing_ = false;
    if (!create_table_) return DescribeTable(error);
    if (!load_.MarkPlace(error)) return false;
    String ignored;
    is_missing_ = !DescribeTable(ignored);
    return load_.ComeBack(error);
}

// Leaving the place tells that something has happened in the transaction.
bool DatabaseData::MakeTable(String& error, const RowSet& rows) {
    is_missing_ = false;
    return load_.MarkPlace(error) && maker_->Make(error, name_, rows) && load_.LeavePlace(error) &&
           DescribeTable(error);
}

bool DatabaseData::DescribeTable(String& error) {
    const String query = u"select * from " + table_;
    const bool described = settings_->Follows(Rule::TargetsAreDescribed)
                               ? database_->Describe(error, query, table_rows_)
                               : database_->Query(error, query, table_rows_);
    database_->CloseQuery();
    if (!described) error = u"Could not retrieve table defintition";  // published spelling
    return described;
}

bool DatabaseData::CheckColumns(String& error, const SectionSettings& settings,
                                const RowSet& rows) {
    if (!Connect(error, settings)) return false;
    NameTable();
    if (!database_->Describe(error, u"select * from " + table_, table_rows_)) {
        if (create_table_) return true;
        error = u"Could not retrieve table defintition";
        return false;
    }
    if (!TakesRowsBack(error)) return false;
    Columns ignored;
    return by_name_ ? MatchColumns(error, table_, rows.Columns, table_rows_.Columns, ignored)
                    : ColumnsFit(error, rows.Columns);
}

bool DatabaseData::ColumnsFit(String& error, const Columns& columns) const {
    const auto counts = [&](const auto& column) { return removed_count_ || column.Included; };
    const auto count =
        static_cast<std::size_t>(std::count_if(columns.begin(), columns.end(), counts));
    if (count == table_rows_.Columns.size()) return true;
    // Published spelling.
    error = Format(u"Traget table has different structure [%d -> %d columns].", count,
                   table_rows_.Columns.size());
    return false;
}

// ---- Rows ----

// PostgreSQL cuts longer names without an error, so the rows might go to another table.
bool DatabaseData::NamesFit(String& error, const RowSet& rows) {
    using Named = DataStorages::StorageDatabase::Named;
    if (!settings_->Follows(Rule::LoadsAreExact) ||
        sql::DialectOf(database_->Product()) != sql::Dialect::PostgreSQL) {
        return true;
    }
    const auto fits = [&](const String& name, std::size_t longest) {
        if (longest == 0 || ToUtf8(name).size() <= longest) return true;
        error = Format(u"The name '%s' has more than the %d bytes that the database keeps.", name,
                       longest);
        return false;
    };
    const std::size_t longest = database_->LongestName(Named::Table);
    const auto is_kept = [&](const String& piece) { return fits(piece, longest); };
    if (!std::all_of(name_.begin(), name_.end(), is_kept)) return false;
    if (!is_missing_) return true;
    const std::size_t longest_column = database_->LongestName(Named::Column);
    return std::all_of(rows.Columns.begin(), rows.Columns.end(), [&](const auto& column) {
        return !column.Included || fits(column.Name, longest_column);
    });
}

// Two tables of a source that would end in one are hardly wanted.
bool DatabaseData::NoteOrigin(String& error, const RowSet& rows) {
    if (rows.TableName.empty() || !table_per_result_set_) return true;
    const String origin = rows.SchemaName.empty()
                              ? rows.TableName
                              : Format(u"%s.%s", rows.SchemaName, rows.TableName);
    const bool folds = settings_->Follows(Rule::LoadsAreExact) && FoldsNames(database_->Product());
    const auto [place, is_new] = origins_.emplace(folds ? text::Lowered(table_) : table_, origin);
    const bool follows = settings_->Unresolved(kTable).find(u"$TABLE$") != String::npos;
    if (is_new || place->second == origin || !follows) return true;
    error = Format(u"Table %s would take the rows of %s and of %s: name it by $SCHEMA$, too.",
                   table_, place->second, origin);
    return false;
}

bool DatabaseData::Prepare(String& error, RowSet& rows) {
    return (!by_name_ && !is_missing_) || BeginRows(error, rows);
}

String DatabaseData::InsertHead(const Columns& columns) const {
    if (dialect_ == nullptr) return sql::InsertPrefix(table_, columns, by_name_);
    String head = u"insert into " + table_;
    for (std::size_t i = 0; by_name_ && i < columns.size(); ++i) {
        head += i == 0 ? u'(' : u',';
        dialect_->AppendName(head, columns[i].Name);
    }
    if (by_name_) head += u')';
    return head += u" values";
}

bool DatabaseData::BeginRows(String& error, const RowSet& rows) {
    if (!NamesFit(error, rows) || !NoteOrigin(error, rows)) return false;
    if (is_missing_ && !MakeTable(error, rows)) return false;
    if (!TakesRowsBack(error)) return false;
    DataStorages::InsertTarget target;
    target.columns = table_rows_.Columns;
    if (by_name_ &&
        !MatchColumns(error, table_, rows.Columns, table_rows_.Columns, target.columns)) {
        return false;
    }
    target.head = InsertHead(target.columns);
    target.rows = insert_rows_;
    target.most_rows = static_cast<std::size_t>(rules_.commit_rows);
    target.end = delimiter_;
    if (insert_mode_ == InsertMode::Bound) {
        load_.Use(database_->MakeSender(target));
    } else {
        load_.Use(std::make_unique<LiteralRows>(*database_, std::move(target), dialect_));
    }
    begun_ = true;
    return true;
}

bool DatabaseData::Write(String& error, RowSet& rows) {
    if (!begun_ && is_missing_ && !BeginRows(error, rows)) return false;
    if (!by_name_ && !ColumnsFit(error, rows.Columns)) return false;
    if (!begun_ && !BeginRows(error, rows)) return false;
    const bool added = load_.Add(error, rows);
    written_size_ = load_.Inserted();
    return added;
}

bool DatabaseData::NextResultSet(String& error, const SectionSettings& /*settings*/) {
    if (!by_name_ && !table_per_result_set_) return false;
    begun_ = false;
    if (!load_.Send(error)) return false;
    if (!table_per_result_set_) return true;
    return FindTable(error);
}

// ---- The end ----

bool DatabaseData::Close(String& error) {
    const bool sent = load_.Send(error);
    written_size_ = load_.Inserted();
    return sent && (load_.InTransaction() || Finish(error));
}

bool DatabaseData::Commit(String& error) { return !load_.InTransaction() || Finish(error); }

bool DatabaseData::Finish(String& error) {
    if (!load_.Commit(error)) return false;
    maker_->Keep();
    return database_->Close();
}

void DatabaseData::TakeBack() {
    if (!database_) return;
    load_.Rollback();
    if (maker_) maker_->Drop();
    database_->Close();
}

}  // namespace DataConsumers
