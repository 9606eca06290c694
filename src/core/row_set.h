// The rows that flow through a step: the columns of the current result set and its current row.
// A result is never held whole. Positions count from 0.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "base/strings.h"

// What is known of one column. The ODBC names are those of the descriptor fields of the ODBC 3
// reference (SQLColAttribute).
struct ColumnDefinition {
    ColumnDefinition() = default;
    // A column of a source that reads no database.
    ColumnDefinition(String name, std::int32_t data_type, String type_name, std::int32_t length)
        : Name(std::move(name)),
          TypeName(std::move(type_name)),
          DataType(data_type),
          ConciseType(data_type),
          Length(length) {}

    String Name;
    String TableName;      // of the base table
    String Qualifier;      // kept empty
    String LiteralPrefix;  // what opens a literal of this type in a statement
    String LiteralSuffix;
    String TypeName;  // as the data source spells it
    String LocalTypeName;
    bool Nullable = true;
    bool AutoUnique = false;
    bool Included = true;          // false once a transformer has removed the column
    std::int32_t DataType = 0;     // ODBC verbose type code (SQL_DESC_TYPE)
    std::int32_t ConciseType = 0;  // ODBC concise type code (SQL_DESC_CONCISE_TYPE)
    std::int32_t Length = 0;       // characters, or the precision of other types
    std::int32_t DisplaySize = 0;
    std::int32_t OctetLength = 0;
    std::int32_t Digits = -1;    // behind the decimal point or of a second; -1: not told
    bool Unsigned = false;       // of whole numbers
    bool Unsized = false;        // Length and Digits are guesses of the driver
    std::uint64_t MaxWidth = 0;  // the widest text seen, in characters

    void RaiseMaxWidth(std::uint64_t width) {
        if (width > MaxWidth) MaxWidth = width;
    }
};

// One value. NULL is never a special text: IsNull tells it from an empty string.
struct DataValue {
    bool IsNull = false;
    bool Included = true;
    String Text;
};

using DataRow = std::vector<DataValue>;

// What a database's catalogue says of a column beside the texts of a row that describes it. It
// holds for a row that still has the type's name and the default which stand here.
struct DescribedColumn {
    String TypeName;
    std::int32_t ConciseType = 0;
    std::int32_t OctetLength = 0;
    bool Unsized = false;
    String Default;                      // as the driver spells it
    std::optional<String> DefaultValue;  // of a number or a text, without quotes
};

struct RowSet {
    String Label;  // a free slot
    String SchemaName;
    String TableName;
    std::vector<ColumnDefinition> Columns;
    DataRow Row;  // never shortened by a fetch, so its texts keep their room
    std::unique_ptr<std::vector<RowSet>> Nested;
    // Of the current row: its number in the source, from 1, and where in a file it began; 0: not
    // known.
    std::uint64_t Number = 0;
    std::uint64_t Line = 0;
    std::optional<DescribedColumn> Described;  // of the current row
    bool SkipRow = false;  // a transformer's wish: neither write nor count this row

    // Appends default values until there are at least `count`.
    void GrowRow(std::size_t count) {
        if (Row.size() < count) Row.resize(count);
    }
    void ClearRow() { Row.clear(); }

    // Marks a column and its value as removed; a position outside a list is ignored.
    void Exclude(std::size_t position) {
        if (position < Columns.size()) Columns[position].Included = false;
        if (position < Row.size()) Row[position].Included = false;
    }
};
