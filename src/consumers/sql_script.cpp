#include "consumers/sql_script.h"

#include "consumers/sql_statement.h"
#include "files/format.h"

namespace DataConsumers {
namespace {

constexpr KeyTable kScriptKeys({
    {.name = u"Table",
     .meaning = u"the table's name; macros are replaced for each result set",
     .macros = Macros::Replaced,
     .names = Names::Table,
     .needed = u"table"},
    {.name = u"Delimiter", .meaning = u"what ends a statement"},
});
constexpr Key kTable = kScriptKeys[u"Table"];
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
     .edition2 = u"0",
     .meaning = u"name the columns in each statement"},
});
constexpr Key kBatchSize = kInsertKeys[u"BatchSize"];
constexpr Key kColumnList = kInsertKeys[u"ColumnList"];

}  // namespace

KeyList SQLScript::InsertKeys() {
    return {kInsertKeys, kScriptKeys, kOverwriteKeys, kEncodingKeys, FileKeys()};
}
KeyList SQLScript::CreateTableKeys() {
    return {kScriptKeys, kOverwriteKeys, kEncodingKeys, FileKeys()};
}

bool SQLScript::ReadSettings(String& error, const SectionSettings& settings) {
    settings_ = settings;
    table_setting_ = settings.Unresolved(kTable);
    if (table_setting_.empty()) {
        error = u"Output table name is not provided.";
        return false;
    }
    delimiter_ = settings.Text(kDelimiter);
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
    table_ = table_setting_;
    settings_->ResolveAllMacros(table_);
    if (statement_ == Statement::Insert) {
        prefix_ = sql::InsertPrefix(table_, rows.Columns, column_list_);
    }
    return true;
}

bool SQLScript::Write(String& error, RowSet& rows) {
    if (statement_ == Statement::Insert) return WriteRow(error, rows);
    if (rows.Nested) return WriteTable(error, rows);
    const sql::QualifiedName name = sql::NameOfDescribed(table_setting_, table_, rows);
    return sql::AppendColumnLine(error, line_, name, rows.Row);
}

bool SQLScript::WriteRow(String& error, const RowSet& rows) {
    if (rows_in_batch_ > 0) {
        line_ += u",\r\n  ";
    } else {
        line_ = prefix_;
    }
    if (!sql::AppendValueList(error, line_, rows.Columns, rows.Row)) return false;
    if (++rows_in_batch_ == batch_size_) return EndStatement(error);
    if (batch_size_ < 1) rows_in_batch_ = 0;  // never written, so not kept either
    return true;
}

// The row names a table and its schema, and brings the table's columns along.
bool SQLScript::WriteTable(String& error, const RowSet& rows) {
    const StringView table = rows.Row.empty() ? StringView() : rows.Row[0].Text;
    const StringView schema = rows.Row.size() < 2 ? StringView() : rows.Row[1].Text;
    line_.clear();
    for (const RowSet& column : *rows.Nested) {
        if (!sql::AppendColumnLine(error, line_, {schema, table}, column.Row)) return false;
    }
    whole_tables_ = true;
    if (line_.empty()) return true;  // a table without columns
    line_ += u')';
    return EndStatement(error);
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
    if (!line_.empty() && !EndFile(error)) return false;
    prepare_pending_ = true;
    return true;
}

bool SQLScript::EndFile(String& error) {
    if (statement_ == Statement::CreateTable) {
        if (whole_tables_) return true;  // each is complete
        line_ += u')';
        return EndStatement(error);
    }
    return rows_in_batch_ == 0 || EndStatement(error);
}

}  // namespace DataConsumers
