#include "consumers/sql_script.h"

#include "consumers/dialect_statements.h"
#include "consumers/plain_statements.h"
#include "files/format.h"

namespace DataConsumers {
namespace {

constexpr KeyTable kScriptKeys({
    {.name = u"Table",
     .meaning = u"the table's name; macros are replaced for each result set",
     .macros = Macros::Replaced,
     .names = Names::Table,
     .needed = u"table"},
    {.name = u"SqlDialect",
     .kind = KeyKind::Word,
     .words = sql::kScriptDialectWords,
     .edition1 = u"Plain",
     .edition2 = u"ANSI",
     .meaning = u"names, types and literals as a database has them; Plain: as the source tells",
     .since = Since::Later},
    {.name = u"Delimiter",
     .edition2 = sql::SqlDialect::StatementEnd(),
     .meaning = u"what ends a statement",
     .own = true,
     .defaults = u"1: empty with SqlDialect=Plain, else `;`; 2: `;`"},
});
constexpr Key kTable = kScriptKeys[u"Table"];
constexpr Key kSqlDialect = kScriptKeys[u"SqlDialect"];
constexpr Key kDelimiter = kScriptKeys[u"Delimiter"];

constexpr KeyTable kInsertKeys({
    {.name = u"BatchSize",
     .kind = KeyKind::Number,
     .edition1 = u"1",
     .edition2 = u"1",
     .meaning = u"rows a statement"},
    {.name = u"ColumnList",
     .kind = KeyKind::Flag,
     .edition1 = u"0",
     .edition2 = u"1",
     .meaning = u"name the columns in each statement"},
});
constexpr Key kBatchSize = kInsertKeys[u"BatchSize"];
constexpr Key kColumnList = kInsertKeys[u"ColumnList"];

std::unique_ptr<sql::StatementForm> FormOf(sql::Dialect dialect) {
    if (dialect == sql::Dialect::Plain) return std::make_unique<sql::PlainStatements>();
    return std::make_unique<sql::DialectStatements>(sql::SqlDialect::Of(dialect));
}

}  // namespace

KeyList SQLScript::InsertKeys() {
    return {kInsertKeys, kScriptKeys, kOverwriteKeys, kEncodingKeys, FileKeys()};
}
KeyList SQLScript::CreateTableKeys() {
    return {kScriptKeys, kOverwriteKeys, kEncodingKeys, FileKeys()};
}

bool SQLScript::ReadSettings(String& error, const SectionSettings& settings) {
    table_.emplace(settings, kTable);
    if (table_->Unresolved().empty()) {
        error = u"Output table name is not provided.";
        return false;
    }
    const auto dialect = settings.Word(kSqlDialect, sql::Dialect::Plain);
    form_ = FormOf(dialect);
    const bool ends_itself = dialect != sql::Dialect::Plain && !settings.IsGiven(kDelimiter);
    delimiter_ = ends_itself ? String(sql::SqlDialect::StatementEnd()) : settings.Text(kDelimiter);
    batch_size_ = settings.Number(kBatchSize);
    if (batch_size_ < 1 && settings.Follows(Rule::BatchSizeChecked)) {
        error = Format(u"'%s' must be at least 1.", kBatchSize->name);
        return false;
    }
    column_list_ = settings.Flag(kColumnList);
    return true;
}

// A statement never spans two files.
bool SQLScript::BeginFile(String& /*error*/) {
    line_.clear();
    rows_in_batch_ = 0;
    whole_tables_ = false;
    prepare_pending_ = true;
    return true;
}

bool SQLScript::Prepare(String& /*error*/, RowSet& rows) {
    if (!prepare_pending_) return true;
    prepare_pending_ = false;
    form_->Prepare(*table_, rows, column_list_);
    return true;
}

bool SQLScript::Write(String& error, RowSet& rows) {
    if (statement_ == Statement::Insert) return WriteRow(error, rows);
    if (rows.Nested) return WriteTable(error, rows);
    return form_->AddColumn(error, *table_, rows);
}

bool SQLScript::WriteRow(String& error, const RowSet& rows) {
    if (rows_in_batch_ > 0) {
        line_ += u",\r\n  ";
    } else {
        line_.clear();
        form_->AppendInsert(line_);
    }
    if (!form_->AppendValues(error, line_, rows)) return false;
    if (++rows_in_batch_ == batch_size_) return EndStatement(error);
    if (batch_size_ < 1) rows_in_batch_ = 0;  // never written, so not kept either
    return true;
}

bool SQLScript::WriteTable(String& error, const RowSet& rows) {
    line_.clear();
    if (!form_->AppendNestedTable(error, line_, *table_, rows)) return false;
    whole_tables_ = true;
    return line_.empty() || EndStatement(error);  // empty: a table without columns
}

bool SQLScript::EndStatement(String& error) {
    line_ += delimiter_;
    line_ += u"\r\n";
    const bool written = WriteText(error, line_);
    line_.clear();
    rows_in_batch_ = 0;
    return written;
}

bool SQLScript::ContinueFile(String& error) {
    const bool in_statement = rows_in_batch_ > 0 || form_->HasColumns();
    if (in_statement && !EndFile(error)) return false;
    prepare_pending_ = true;
    return true;
}

bool SQLScript::EndFile(String& error) {
    if (statement_ == Statement::CreateTable) {
        if (whole_tables_) return true;  // each is complete
        if (!form_->HasColumns() && !form_->EndsEmptyTables()) return true;
        line_.clear();
        form_->AppendTable(line_);
        return EndStatement(error);
    }
    return rows_in_batch_ == 0 || EndStatement(error);
}

}  // namespace DataConsumers
