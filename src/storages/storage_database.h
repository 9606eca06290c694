#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "base/strings.h"
#include "core/row_set.h"
#include "storages/row_sender.h"
#include "storages/storage.h"
#include "storages/transactional.h"

namespace DataStorages {

// A table or view as a database's catalogue lists it.
struct TableEntry {
    String Name;
    String Detail;  // the schema
    std::uint8_t Flag = 0;
};

// A column as a database's catalogue lists it: the driver's values, as text.
struct CatalogColumn {
    String Column;
    String Table;
    String TypeName;
    String Size;
    String Digits;
    String Nullable;  // "0", "1" or "2" (unknown)
    String Default;
    // Not in the rows that describe the column.
    String TypeCode;  // the concise ODBC type
    String OctetLength;
    bool Unsized = false;                // Size is a guess of the driver
    std::optional<String> DefaultValue;  // of a number or a text, without quotes
};

// How rows are read.
struct ReadingMethod {
    // In blocks of rows, where driver and columns allow it; else value by value. The same values
    // come out.
    bool in_blocks = false;
    std::uint64_t block_bytes = 0;  // most room for a block
    bool whole_values = false;      // else long values are cut, see the database
    // Bytes come as hexadecimal digits, all of them, and bits as 0 and 1, whatever the driver makes
    // of them as texts.
    bool bytes_as_digits = false;
    // A result fails where the driver does not tell how many columns it has, and their names and
    // types; else there are none, without names.
    bool told_columns = false;
};

enum class TableKind { Tables = 0, Views = 1 };

// A database: statements go in, result sets come out. Operations return false on failure and say
// why in `error`, the first argument; nothing is thrown.
class StorageDatabase : public Quillon::Storage, public Transactional {
public:
    // Connects to a data source name, or by a connect string.
    virtual bool Open(String& error, const String& source, const String& login,
                      const String& password) = 0;
    // Executes a statement that returns rows and describes its columns into `rows`.
    virtual bool Query(String& error, const String& statement, RowSet& rows) = 0;
    // Describes the columns that a statement would return, and does not execute it.
    virtual bool Describe(String& error, const String& statement, RowSet& rows) = 0;
    // How the rows of the queries from now on are read. Without it: value by value, long ones cut.
    virtual void ReadBy(const ReadingMethod& method) = 0;
    // Executes a statement and discards any result.
    virtual bool ExecNonQuery(String& error, const String& statement) = 0;
    // Reads the next row into `rows.Row`. track_widths: also raise each column's MaxWidth.
    // False with `error` as it came is the end of the data.
    virtual bool Fetch(String& error, RowSet& rows, bool track_widths) = 0;
    // Moves to the statement's next result set and describes it. False with `error` as it came
    // when there is none.
    virtual bool HasMoreData(String& error, RowSet& rows) = 0;
    virtual bool CloseQuery() = 0;
    virtual bool Close() = 0;
    // Lists the tables or the views of the database.
    virtual bool Tables(String& error, std::vector<TableEntry>& tables, TableKind kind) = 0;
    // Lists the columns of one table. An empty schema means any.
    virtual bool Columns(String& error, const String& schema, const String& table,
                         std::vector<CatalogColumn>& columns) = 0;
    // Columns of the current result set.
    virtual std::int16_t ColumnCount() const = 0;

    // The database's own words for the last failure.
    virtual const String& LastError() const = 0;
    // True when the last Fetch or HasMoreData met a failure that it took for the end of the data.
    virtual bool ReadingFailed() const = 0;
    // ---- Writing ----

    // Which database it is, as it calls itself: "PostgreSQL".
    virtual String Product() const = 0;
    // What sends rows as parameters. It goes before the connection is closed.
    virtual std::unique_ptr<RowSender> MakeSender(const InsertTarget& target) = 0;

    // What the connected database has around the names of tables and columns (SQL, delimited
    // identifiers); empty where it takes no quotes.
    virtual String IdentifierQuote() const = 0;

    enum class Named { Table, Column };
    // The longest name that the database takes; 0: not known.
    virtual std::size_t LongestName(Named named) const = 0;
};

}  // namespace DataStorages
