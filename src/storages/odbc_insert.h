#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "storages/driver_habits.h"
#include "storages/odbc_handle.h"
#include "storages/row_sender.h"

namespace DataStorages {

// Sends rows as the parameters of prepared insert statements (ODBC reference, SQLBindParameter).
// Values lie in cells of a size, column by column, where the driver finds them in each execution; a
// row with a longer value travels alone.
//
// Add fails with "Column '%s' takes bytes: '%s' is not their hexadecimal digits." and
// "Column '%s' takes a bit: '%s' is none."; Send with "ODBCDatabase::Insert execution error: " and
// the driver's diagnostic.
class ODBCInsert final : public RowSender {
public:
    struct Session {
        void* environment = nullptr;
        void* connection = nullptr;
        bool narrow = false;  // the driver has no wide calls
        bool utf8 = false;    // its narrow texts are UTF-8
    };

    ODBCInsert(InsertTarget target, const DriverHabits& habits, const Session& session);

    bool Fits(const RowSet& rows) const override;
    bool Add(String& error, const RowSet& rows) override;
    bool IsFull() const override;
    std::size_t Count() const override { return count_; }
    bool Send(String& error) override;
    bool SendOne(String& error, std::size_t position) override;
    void Clear() override;
    void TransactionEnded() override;

private:
    enum class Form { Utf16, Utf8, Bytes, Bit };

    // A column's cells, one a row, and how many bytes of each are used.
    struct Cells {
        ColumnDefinition column;
        Form form = Form::Utf16;
        std::size_t width = 0;  // of a cell in bytes
        std::vector<char> bytes;
        std::vector<std::int64_t> lengths;  // or that of NULL, as ODBC has it
        std::string long_value;             // of a row that travels alone
    };
    // A prepared statement and what it is bound to.
    struct Prepared {
        ODBCHandle handle;
        std::size_t rows = 0;      // that it takes; 0: not prepared
        std::uint64_t layout = 0;  // of the cells that it is bound to
    };

    bool TakesSets() const;
    Form FormOf(const ColumnDefinition& column) const;
    std::size_t BytesFor(const Cells& cells, const DataValue& value) const;
    bool IsLong(const RowSet& rows) const;
    void MakeRoom(const RowSet& rows);
    void LayOut();
    bool Put(String& error, Cells& cells, const DataValue& value);
    bool PutInto(String& error, const Cells& cells, const DataValue& value, char* to,
                 std::int64_t& length) const;

    bool PrepareFor(String& error, Prepared& prepared, std::size_t rows);
    enum class Which { All, Bytes };
    bool BindCells(const Prepared& prepared, std::size_t first_row, std::size_t rows,
                   Which which = Which::All);
    bool BindAnew(Prepared& prepared);
    bool BindLongRow(const Prepared& prepared);
    bool Bind(const Prepared& prepared, std::size_t parameter, Cells& cells, char* value,
              std::int64_t* length) const;
    bool PrepareSets(String& error);
    bool SendSets(String& error);
    bool SendStatement(String& error);
    bool Execute(String& error, const Prepared& prepared) const;
    bool Fail(String& error, const Prepared& prepared) const;
    String StatementFor(std::size_t rows) const;

    const InsertTarget target_;
    const DriverHabits& habits_;
    const Session session_;
    std::vector<Cells> cells_;
    std::size_t most_rows_ = 1;          // that the settings and the driver allow
    std::size_t rows_ = 1;               // that the cells have room for
    std::size_t count_ = 0;              // gathered
    bool long_row_ = false;              // the one row that is gathered travels alone
    std::uint64_t layout_ = 0;           // counts the layouts of the cells
    Prepared whole_;                     // takes rows_ rows, or sets
    Prepared part_;                      // fewer
    Prepared one_;                       // one, bound anew each time
    std::vector<std::uint16_t> states_;  // of sets
};

}  // namespace DataStorages
