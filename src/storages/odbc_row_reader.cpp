#include "storages/odbc_row_reader.h"

#include <algorithm>

#include "base/utf8.h"
#include "core/column_type.h"
#include "core/sql_types.h"
#include "storages/odbc_calls.h"

namespace DataStorages {
namespace {

constexpr std::size_t kMostRows = 1'000;          // of a block; more gains nothing
constexpr std::size_t kUnsizedCellUnits = 1'024;  // for a column without a usable length
constexpr std::int32_t kLongestCellUnits = 4'000;

// How a value is read that may be longer than the room for it.
using ValueRead = ODBCValueBuffer::Outcome (ODBCValueBuffer::*)(void*, std::uint16_t, String&);
using ValueReads = std::vector<ValueRead>;  // of the columns

ValueReads ReadsOf(const ReadingMethod& method, const DriverHabits& habits,
                   const std::vector<ColumnDefinition>& columns) {
    ValueReads reads;
    for (const ColumnDefinition& column : columns) {
        const ColumnKind kind = method.bytes_as_digits ? KindOf(column) : ColumnKind::Text;
        if (kind == ColumnKind::Binary) {
            reads.push_back(&ODBCValueBuffer::ReadBytes);
        } else if (kind == ColumnKind::Bit && habits.bits) {
            reads.push_back(&ODBCValueBuffer::ReadBit);
        } else if (method.whole_values) {
            reads.push_back(&ODBCValueBuffer::ReadWhole);
        } else {
            reads.push_back(&ODBCValueBuffer::ReadCut);
        }
    }
    return reads;
}

bool ReadInto(DataValue& value, ODBCValueBuffer& buffer, const ValueReads& reads, void* statement,
              std::uint16_t position) {
    const auto number = static_cast<std::uint16_t>(position + 1);
    // A driver may describe fewer columns than it counts.
    const ValueRead read = position < reads.size() ? reads[position] : &ODBCValueBuffer::ReadCut;
    const auto outcome = (buffer.*read)(statement, number, value.Text);
    value.IsNull = outcome == ODBCValueBuffer::Outcome::Null;
    if (outcome != ODBCValueBuffer::Outcome::Text) value.Text.clear();
    return outcome != ODBCValueBuffer::Outcome::Failed;
}

// Asks for each value by a call of its own.
class ValueByValue final : public ODBCRowReader {
public:
    ValueByValue(void* statement, ODBCValueBuffer& buffer, ValueReads reads)
        : statement_(statement), buffer_(buffer), reads_(std::move(reads)) {}

    std::int16_t Next() override { return SQLFetch(statement_); }
    bool Read(std::uint16_t position, DataValue& value) override {
        return ReadInto(value, buffer_, reads_, statement_, position);
    }

private:
    void* statement_;
    ODBCValueBuffer& buffer_;
    const ValueReads reads_;
};

// ---- Blocks ----

// Units for a value of a column and the zero behind it; none where no length is known that all
// values keep to.
std::size_t CellUnits(const ColumnDefinition& column) {
    const std::int32_t type = column.ConciseType;
    const bool is_long =
        type == kSqlLongVarchar || type == kSqlWLongVarchar || type == kSqlLongVarbinary;
    const std::int32_t length = std::max(column.DisplaySize, column.Length);
    if (is_long || length <= 0 || length > kLongestCellUnits) return 0;
    // A character may take two units, a byte two digits.
    return 2 * static_cast<std::size_t>(length) + 2;
}

// The driver's form of a value in a cell.
std::int16_t CellType(bool utf8, const ColumnDefinition& column, ValueRead read) {
    if (read == &ODBCValueBuffer::ReadBytes) return SQL_C_BINARY;
    return utf8 && KindOf(column) != ColumnKind::Bit ? SQL_C_CHAR : SQL_C_WCHAR;
}

// Has the driver put whole blocks of rows into cells of fixed size. A value that does not fit is
// asked for again.
class Blocks final : public ODBCRowReader {
public:
    Blocks(void* statement, ODBCValueBuffer& buffer, ValueReads reads)
        : statement_(statement), buffer_(buffer), reads_(std::move(reads)) {}
    ~Blocks() override { Unbind(); }
    Blocks(const Blocks&) = delete;
    Blocks& operator=(const Blocks&) = delete;

    // Adds a column, whose values come in this form.
    void Add(std::size_t units, std::int16_t type);
    // Lays the cells out in `bytes`. False when there is no room for a row, or the driver refuses.
    bool Bind(bool several_rows, std::uint64_t bytes);

    std::int16_t Next() override;
    bool Read(std::uint16_t position, DataValue& value) override;

private:
    bool Take(std::uint16_t position, std::size_t bytes, String& text) const;
    bool AskForRows(std::size_t rows);
    void Unbind();
    std::int16_t FetchBlock();

    void* statement_;
    ODBCValueBuffer& buffer_;
    const ValueReads reads_;
    std::vector<std::size_t> units_;     // of a cell, by column
    std::vector<std::int16_t> types_;    // of the values, by column
    std::vector<std::size_t> first_;     // unit of a column's first cell
    std::unique_ptr<char16_t[]> cells_;  // column by column
    std::vector<SQLLEN> indicators_;     // likewise
    std::vector<SQLUSMALLINT> states_;   // by row
    SQLULEN fetched_ = 0;
    std::size_t rows_ = 1;       // of a block
    std::size_t row_ = 0;        // the current one
    std::size_t good_rows_ = 0;  // in the block
    bool failed_ = false;        // behind its good rows
};

void Blocks::Add(std::size_t units, std::int16_t type) {
    units_.push_back(units);
    types_.push_back(type);
}

// Takes a value that fits into its cell. False where that is not the text that it should be.
bool Blocks::Take(std::uint16_t position, std::size_t bytes, String& text) const {
    const char16_t* const cell = cells_.get() + first_[position] + row_ * units_[position];
    if (types_[position] == SQL_C_BINARY) {
        text.clear();
        ODBCValueBuffer::AppendDigits(text, cell, bytes);
        return true;
    }
    if (types_[position] == SQL_C_CHAR) {
        return FromUtf8({reinterpret_cast<const char*>(cell), bytes}, text);
    }
    text.assign(cell, bytes / sizeof(char16_t));
    if (reads_[position] == &ODBCValueBuffer::ReadBit) ODBCValueBuffer::ShowBit(text);
    return true;
}

bool Blocks::AskForRows(std::size_t rows) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): ODBC's interface
    auto* const number = reinterpret_cast<SQLPOINTER>(rows);
    return odbc::Succeeded(SQLSetStmtAttrW(statement_, SQL_ATTR_ROW_ARRAY_SIZE, number, 0));
}

bool Blocks::Bind(bool several_rows, std::uint64_t bytes) {
    std::size_t row_bytes = 0;
    for (const std::size_t cell : units_) row_bytes += cell * sizeof(char16_t) + sizeof(SQLLEN);
    if (row_bytes > bytes) return false;
    if (several_rows) {
        rows_ = static_cast<std::size_t>(std::min<std::uint64_t>(kMostRows, bytes / row_bytes));
        states_.resize(rows_);
        const bool taken =
            odbc::Succeeded(
                SQLSetStmtAttrW(statement_, SQL_ATTR_ROW_STATUS_PTR, states_.data(), 0)) &&
            odbc::Succeeded(SQLSetStmtAttrW(statement_, SQL_ATTR_ROWS_FETCHED_PTR, &fetched_, 0)) &&
            AskForRows(rows_);
        if (!taken) return false;
    }
    std::size_t all_units = 0;
    for (const std::size_t cell : units_) {
        first_.push_back(all_units);
        all_units += cell * rows_;
    }
    cells_ = std::make_unique_for_overwrite<char16_t[]>(all_units);
    indicators_.resize(units_.size() * rows_);
    for (std::size_t i = 0; i < units_.size(); ++i) {
        const auto room = static_cast<SQLLEN>(units_[i] * sizeof(char16_t));
        if (!odbc::Succeeded(SQLBindCol(statement_, static_cast<SQLUSMALLINT>(i + 1), types_[i],
                                        cells_.get() + first_[i], room,
                                        indicators_.data() + i * rows_))) {
            return false;
        }
    }
    return true;
}

void Blocks::Unbind() {
    SQLFreeStmt(statement_, SQL_UNBIND);
    if (states_.empty()) return;
    SQLSetStmtAttrW(statement_, SQL_ATTR_ROW_STATUS_PTR, nullptr, 0);
    SQLSetStmtAttrW(statement_, SQL_ATTR_ROWS_FETCHED_PTR, nullptr, 0);
    AskForRows(1);
}

std::int16_t Blocks::Next() {
    if (++row_ < good_rows_) return SQL_SUCCESS;
    if (failed_) return SQL_ERROR;
    row_ = 0;
    return states_.empty() ? SQLFetch(statement_) : FetchBlock();
}

// A block may have good rows in front of one that cannot be read: those are delivered.
std::int16_t Blocks::FetchBlock() {
    fetched_ = 0;
    std::fill(states_.begin(), states_.end(), static_cast<SQLUSMALLINT>(SQL_ROW_NOROW));
    const SQLRETURN result = SQLFetch(statement_);
    const auto end =
        states_.begin() + static_cast<std::ptrdiff_t>(std::min<SQLULEN>(fetched_, rows_));
    const auto bad = std::find_if(states_.begin(), end, [](SQLUSMALLINT state) {
        return state == SQL_ROW_ERROR || state == SQL_ROW_NOROW;
    });
    good_rows_ = static_cast<std::size_t>(bad - states_.begin());
    failed_ = !odbc::SucceededOrNoData(result) || bad != end;
    if (good_rows_ != 0) return SQL_SUCCESS;
    return failed_ ? static_cast<SQLRETURN>(SQL_ERROR) : static_cast<SQLRETURN>(SQL_NO_DATA);
}

bool Blocks::Read(std::uint16_t position, DataValue& value) {
    const SQLLEN bytes = indicators_[position * rows_ + row_];
    value.IsNull = bytes == SQL_NULL_DATA;
    if (value.IsNull) {
        value.Text.clear();
        return true;
    }
    const std::size_t cell = units_[position];
    const bool fits = bytes >= 0 && static_cast<std::size_t>(bytes) < cell * sizeof(char16_t);
    if (fits && Take(position, static_cast<std::size_t>(bytes), value.Text)) return true;
    const auto row = static_cast<SQLSETPOSIROW>(row_ + 1);
    if (!states_.empty() &&
        !odbc::Succeeded(SQLSetPos(statement_, row, SQL_POSITION, SQL_LOCK_NO_CHANGE))) {
        return false;
    }
    return ReadInto(value, buffer_, reads_, statement_, position);
}

// Null where the driver or the columns do not allow it.
std::unique_ptr<ODBCRowReader> MakeBlocks(std::uint64_t bytes, const ReaderSession& session,
                                          void* statement,
                                          const std::vector<ColumnDefinition>& columns,
                                          ODBCValueBuffer& buffer, const ValueReads& reads) {
    SQLUINTEGER abilities = 0;
    SQLGetInfoW(session.connection, SQL_GETDATA_EXTENSIONS, &abilities, sizeof abilities, nullptr);
    if (columns.empty() || (abilities & SQL_GD_BOUND) == 0) return nullptr;
    // Only a driver that reads values of every row of a block again may have several, and some
    // that say they do read those of another row. So columns whose values may turn out too long
    // are taken row by row.
    bool several_rows = (abilities & SQL_GD_BLOCK) != 0;
    auto blocks = std::make_unique<Blocks>(statement, buffer, reads);
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const std::size_t cell = CellUnits(columns[i]);
        if (cell == 0) several_rows = false;
        blocks->Add(cell == 0 ? kUnsizedCellUnits : cell,
                    CellType(session.utf8, columns[i], reads[i]));
    }
    if (!blocks->Bind(several_rows, bytes)) return nullptr;
    return blocks;
}

}  // namespace

std::unique_ptr<ODBCRowReader> MakeRowReader(const ReadingMethod& method,
                                             const ReaderSession& session, void* statement,
                                             const std::vector<ColumnDefinition>& columns,
                                             ODBCValueBuffer& buffer) {
    const ValueReads reads = ReadsOf(method, session.habits, columns);
    const bool may_overrun = session.habits.overruns &&
                             std::any_of(columns.begin(), columns.end(),
                                         [](const auto& column) { return CellUnits(column) == 0; });
    std::unique_ptr<ODBCRowReader> reader;
    if (method.in_blocks && !may_overrun) {
        reader = MakeBlocks(method.block_bytes, session, statement, columns, buffer, reads);
    }
    if (!reader) reader = std::make_unique<ValueByValue>(statement, buffer, reads);
    return reader;
}

}  // namespace DataStorages
