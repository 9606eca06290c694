#include "consumers/strict_form.h"

#include <algorithm>

#include "files/format.h"

namespace DataConsumers {
namespace {

// A query has no name; all of its columns may still come from one table.
String NameOfTable(const RowSet& rows) {
    if (!rows.TableName.empty() || rows.Columns.empty()) return rows.TableName;
    const String& name = rows.Columns.front().TableName;
    const bool same = std::all_of(rows.Columns.begin(), rows.Columns.end(),
                                  [&](const auto& column) { return column.TableName == name; });
    return same ? name : String();
}

}  // namespace

void StrictForm::BeginFile(String& /*out*/) {
    stage_ = Stage::NoTable;
    file_started_ = false;
}

bool StrictForm::BeginTable(String& /*error*/, const RowSet& rows, String& out) {
    table_name_ = NameOfTable(rows);
    columns_.clear();
    for (std::size_t i = 0; i < rows.Columns.size(); ++i) {
        const ColumnDefinition& column = rows.Columns[i];
        if (column.Included) columns_.push_back({i, column.Name, KindOf(column)});
    }
    // A statement that gives no columns, such as an update, gives no table.
    stage_ = rows.Columns.empty() ? Stage::NoTable : Stage::HeadMissing;
    if (!file_started_) AppendFileStart(out);
    file_started_ = true;
    return true;
}

bool StrictForm::BeginRows(String& error, const RowSet& rows, String& out) {
    if (stage_ != Stage::HeadMissing) return true;
    std::erase_if(columns_, [&](const Column& column) {
        return column.position < rows.Row.size() && !rows.Row[column.position].Included;
    });
    stage_ = Stage::InRows;
    return AppendHead(error, out);
}

bool StrictForm::AppendRow(String& error, const RowSet& rows, String& out) {
    if (rows.Row.size() != rows.Columns.size()) {
        error = Format(u"%s: Broken row structure [Values: %d, Structure: %d for '%s']", type_,
                       rows.Row.size(), rows.Columns.size(), rows.TableName);
        return false;
    }
    return stage_ == Stage::NoTable || AppendValues(error, rows.Row, out);
}

bool StrictForm::EndTable(String& error, String& out) {
    if (stage_ == Stage::NoTable) return true;
    const bool headed = stage_ == Stage::InRows || AppendHead(error, out);
    stage_ = Stage::NoTable;
    if (headed) AppendTableEnd(out);
    return headed;
}

bool StrictForm::NextTable(String& error, String& out) {
    const bool ended = EndTable(error, out);
    if (!ended) out.clear();
    return ended;
}

bool StrictForm::EndFile(String& error, String& out) {
    if (!EndTable(error, out)) return false;
    AppendFileEnd(out);
    return true;
}

bool StrictForm::FailAt(String& error, const Column& column) {
    error = Format(u"Column '%s': %s", column.name, error);
    return false;
}

}  // namespace DataConsumers
