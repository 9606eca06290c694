#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "core/row_set.h"
#include "storages/driver_habits.h"
#include "storages/odbc_value_buffer.h"
#include "storages/storage_database.h"

namespace DataStorages {

// Reads the rows of a statement's current result set, in one of the ways of a ReadingMethod. Made
// for each result set.
class ODBCRowReader {
public:
    virtual ~ODBCRowReader() = default;

    // Moves to the next row. Returns what ODBC returned (ODBC reference, SQLFetch); the diagnostic
    // of a failure is the statement's.
    virtual std::int16_t Next() = 0;
    // Reads a value of the row, position from 0. False when that fails; the diagnostic is the
    // statement's.
    virtual bool Read(std::uint16_t position, DataValue& value) = 0;
};

// What a reader has to know of the connection.
struct ReaderSession {
    const DriverHabits& habits;
    void* connection = nullptr;
    bool utf8 = false;  // its character set; texts of blocks come from the driver in it
};

// The reader that the method asks for, or the one that asks for each value where the driver or the
// columns do not allow blocks.
// buffer: takes long values
std::unique_ptr<ODBCRowReader> MakeRowReader(const ReadingMethod& method,
                                             const ReaderSession& session, void* statement,
                                             const std::vector<ColumnDefinition>& columns,
                                             ODBCValueBuffer& buffer);

}  // namespace DataStorages
