#include "providers/database_metadata.h"

#include "core/sql_types.h"
#include "files/format.h"
#include "files/text.h"
#include "storages/open_database.h"

namespace DataProviders {
namespace {

constexpr KeyTable kKeys({
    {.name = u"ObjectType",
     .kind = KeyKind::Word,
     .words = u"Table View AllTables AllViews",
     .meaning = u"what to describe: one table or view, or the list of all",
     .names = Names::Catalogue,
     .needed = u"type"},
    {.name = u"Name",
     .meaning = u"the table or view",
     .macros = Macros::ByEdition,
     .names = Names::Table},
    {.name = u"Schema", .meaning = u"its schema; empty for any"},
    {.name = u"WithColumns",
     .kind = KeyKind::Flag,
     .edition1 = u"0",
     .edition2 = u"0",
     .meaning = u"let the columns of each table of the list travel with it"},
});
constexpr Key kObjectType = kKeys[u"ObjectType"];
constexpr Key kName = kKeys[u"Name"];
constexpr Key kSchema = kKeys[u"Schema"];
constexpr Key kWithColumns = kKeys[u"WithColumns"];
enum class ObjectType { Table, View, AllTables, AllViews, Unknown };

using DataStorages::CatalogColumn;
using DataStorages::StorageDatabase;
using DataStorages::TableEntry;
using DataStorages::TableKind;

ColumnDefinition IntegerColumn(const char16_t* name) { return {name, kSqlInteger, u"integer", 8}; }

std::vector<ColumnDefinition> ColumnsOfColumns() {
    return {TextColumn(u"Table", 256),  TextColumn(u"Column", 256), TextColumn(u"TypeName", 256),
            IntegerColumn(u"Size"),     IntegerColumn(u"Digits"),   IntegerColumn(u"IsNullable"),
            TextColumn(u"Default", 256)};
}

std::vector<String> ValuesOf(const CatalogColumn& column) {
    return {column.Table,  column.Column,   column.TypeName, column.Size,
            column.Digits, column.Nullable, column.Default};
}

DescribedColumn DescriptionOf(const CatalogColumn& column) {
    return {column.TypeName,
            static_cast<std::int32_t>(text::ToInteger(column.TypeCode)),
            static_cast<std::int32_t>(text::ToInteger(column.OctetLength)),
            column.Unsized,
            column.Default,
            column.DefaultValue};
}

// A row set of one row that describes one column.
RowSet RowOf(const CatalogColumn& column) {
    RowSet rows;
    rows.Columns = ColumnsOfColumns();
    for (String& value : ValuesOf(column)) rows.Row.push_back({false, true, std::move(value)});
    rows.Described = DescriptionOf(column);
    return rows;
}

}  // namespace

KeyList DatabaseMetadata::Keys() { return {kKeys, DataStorages::ConnectionSettings::Keys()}; }

bool DatabaseMetadata::Open(String& error, const SectionSettings& settings, RowSet& rows) {
    Clear();
    columns_.clear();
    next_column_ = 0;
    columns_of_tables_.clear();
    next_table_ = 0;
    const auto database = DataStorages::OpenDatabase(
        error, settings, u"The database type or connection type is not supported yet");
    if (!database) return false;
    const bool collected = Collect(error, settings, *database, rows);
    return database->Close() && collected;
}

bool DatabaseMetadata::Collect(String& error, const SectionSettings& settings,
                               StorageDatabase& database, RowSet& rows) {
    const bool with_columns = settings.Flag(kWithColumns);
    switch (settings.Word(kObjectType, ObjectType::Unknown)) {
        case ObjectType::Table:
            return CollectColumns(error, settings, u"table", database, rows);
        case ObjectType::View:
            return CollectColumns(error, settings, u"view", database, rows);
        case ObjectType::AllTables:
            return CollectTables(error, TableKind::Tables, with_columns, database, rows);
        case ObjectType::AllViews:
            return CollectTables(error, TableKind::Views, with_columns, database, rows);
        case ObjectType::Unknown:
            break;
    }
    error = Format(u"Object type '%s' is not supported yet.", settings.Text(kObjectType));
    return false;
}

bool DatabaseMetadata::CollectColumns(String& error, const SectionSettings& settings,
                                      StringView kind, StorageDatabase& database, RowSet& rows) {
    const String name = settings.Text(kName);
    const String schema = settings.Text(kSchema);
    if (name.empty()) {
        error = Format(u"'Name' parameter is mandatory for %s.", kind);
        return false;
    }
    if (!database.Columns(error, schema, name, columns_)) {
        error = Format(u"Could not retrieve list of columns. Schema='%s',Table='%s'", schema, name);
        return false;
    }
    for (const CatalogColumn& column : columns_) Add(ValuesOf(column));
    rows.SchemaName = schema;
    rows.TableName = name;
    rows.Columns = ColumnsOfColumns();
    return true;
}

bool DatabaseMetadata::CollectTables(String& error, TableKind kind, bool with_columns,
                                     StorageDatabase& database, RowSet& rows) {
    std::vector<TableEntry> tables;
    if (!database.Tables(error, tables, kind)) return false;
    for (const TableEntry& table : tables) {
        Add({table.Name, table.Detail});
        if (!with_columns) continue;
        Columns& columns = columns_of_tables_.emplace_back();
        if (!database.Columns(error, table.Detail, table.Name, columns)) return false;
    }
    if (rows.Columns.size() < 2) {
        rows.Columns = {TextColumn(u"Table", 256), TextColumn(u"Schema", 256)};
    }
    return true;
}

bool DatabaseMetadata::Fetch(String& error, RowSet& rows, bool track_widths) {
    if (!CollectedSource::Fetch(error, rows, track_widths)) return false;
    if (next_column_ != columns_.size()) rows.Described = DescriptionOf(columns_[next_column_++]);
    if (next_table_ == columns_of_tables_.size()) return true;
    rows.Nested = std::make_unique<std::vector<RowSet>>();
    for (const CatalogColumn& column : columns_of_tables_[next_table_++]) {
        rows.Nested->push_back(RowOf(column));
    }
    return true;
}

}  // namespace DataProviders
