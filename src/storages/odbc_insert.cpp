#include "storages/odbc_insert.h"

#include <algorithm>

#include "base/utf8.h"
#include "core/column_type.h"
#include "core/sql_types.h"
#include "files/format.h"
#include "files/text.h"
#include "storages/odbc_calls.h"

namespace DataStorages {
namespace {

constexpr std::size_t kFirstWidth = 32;         // of a cell, in bytes
constexpr std::size_t kLongestWidth = 2'048;    // values beyond it travel alone
constexpr std::size_t kCellsBytes = 4'194'304;  // most room for all cells
constexpr std::size_t kShownUnits = 40;         // of a value in a message

int DigitOf(char16_t unit) {
    if (unit >= u'0' && unit <= u'9') return unit - u'0';
    if (unit >= u'a' && unit <= u'f') return unit - u'a' + 10;
    if (unit >= u'A' && unit <= u'F') return unit - u'A' + 10;
    return -1;
}

// Writes the bytes that hexadecimal digits stand for; false for what are none.
bool BytesOfDigits(StringView digits, char* to) {
    if (digits.size() % 2 != 0) return false;
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const int high = DigitOf(digits[i]);
        const int low = DigitOf(digits[i + 1]);
        if (high < 0 || low < 0) return false;
        *to++ = static_cast<char>(high * 16 + low);
    }
    return true;
}

// 1 or 0 for the ways in which databases tell a bit; -1 for what is none.
int BitOf(StringView text) {
    for (const StringView word : {u"1", u"true", u"t", u"-1"}) {
        if (text::EqualsIgnoringCase(text, word)) return 1;
    }
    for (const StringView word : {u"0", u"false", u"f"}) {
        if (text::EqualsIgnoringCase(text, word)) return 0;
    }
    return -1;
}

SQLPOINTER NumberPointer(std::size_t number) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): ODBC's interface
    return reinterpret_cast<SQLPOINTER>(number);
}

}  // namespace

ODBCInsert::ODBCInsert(InsertTarget target, const DriverHabits& habits, const Session& session)
    : target_(std::move(target)), habits_(habits), session_(session) {
    for (const ColumnDefinition& column : target_.columns) {
        cells_.push_back({.column = column,
                          .form = FormOf(column),
                          .width = kFirstWidth,
                          .bytes = {},
                          .lengths = {},
                          .long_value = {}});
    }
    const std::size_t columns = std::max<std::size_t>(cells_.size(), 1);
    most_rows_ = target_.rows != 0 ? target_.rows : habits_.rows;
    if (habits_.sets && !TakesSets()) most_rows_ = 1;
    if (!habits_.sets) most_rows_ = std::min(most_rows_, habits_.most_parameters / columns);
    if (target_.most_rows != 0) most_rows_ = std::min(most_rows_, target_.most_rows);
    most_rows_ = std::max<std::size_t>(most_rows_, 1);
    LayOut();
}

ODBCInsert::Form ODBCInsert::FormOf(const ColumnDefinition& column) const {
    const ColumnKind kind = KindOf(column);
    if (kind == ColumnKind::Binary) return Form::Bytes;
    if (kind == ColumnKind::Bit && habits_.bits) return Form::Bit;
    return session_.utf8 ? Form::Utf8 : Form::Utf16;
}

// A driver may refuse, or take fewer sets than it was asked to.
bool ODBCInsert::TakesSets() const {
    constexpr std::size_t kSeveral = 2;
    const ODBCHandle statement(ODBCHandle::Kind::Statement, session_.connection);
    SQLULEN taken = 0;
    return odbc::Succeeded(SQLSetStmtAttrW(statement.Get(), SQL_ATTR_PARAMSET_SIZE,
                                           NumberPointer(kSeveral), 0)) &&
           odbc::Succeeded(
               SQLGetStmtAttrW(statement.Get(), SQL_ATTR_PARAMSET_SIZE, &taken, 0, nullptr)) &&
           taken == kSeveral;
}

// ---- Gathering ----

// Room that a value needs at most.
std::size_t ODBCInsert::BytesFor(const Cells& cells, const DataValue& value) const {
    if (value.IsNull) return 0;
    switch (cells.form) {
        case Form::Utf16:
            return value.Text.size() * sizeof(char16_t);
        case Form::Utf8:
            return value.Text.size() * 3;
        case Form::Bytes:
            return value.Text.size() / 2;
        case Form::Bit:
            break;
    }
    return 1;
}

bool ODBCInsert::IsLong(const RowSet& rows) const {
    std::size_t next = 0;
    for (const DataValue& value : rows.Row) {
        if (!value.Included || next == cells_.size()) continue;
        if (BytesFor(cells_[next++], value) > kLongestWidth) return true;
    }
    return false;
}

bool ODBCInsert::Fits(const RowSet& rows) const {
    if (count_ == 0) return true;
    if (IsFull()) return false;
    std::size_t next = 0;
    for (const DataValue& value : rows.Row) {
        if (!value.Included || next == cells_.size()) continue;
        const Cells& cells = cells_[next++];
        if (BytesFor(cells, value) > cells.width) return false;
    }
    return true;
}

bool ODBCInsert::IsFull() const { return long_row_ || count_ >= rows_; }

// Widens the cells for a row; none is gathered.
void ODBCInsert::MakeRoom(const RowSet& rows) {
    bool wider = false;
    std::size_t next = 0;
    for (const DataValue& value : rows.Row) {
        if (!value.Included || next == cells_.size()) continue;
        Cells& cells = cells_[next++];
        const std::size_t needed = BytesFor(cells, value);
        if (needed <= cells.width) continue;
        cells.width = std::min(kLongestWidth, std::max(needed, cells.width * 2));
        wider = true;
    }
    if (wider) LayOut();
}

void ODBCInsert::LayOut() {
    std::size_t row_bytes = 1;
    for (const Cells& cells : cells_) row_bytes += cells.width + sizeof(std::int64_t);
    rows_ = std::clamp<std::size_t>(kCellsBytes / row_bytes, 1, most_rows_);
    for (Cells& cells : cells_) {
        cells.bytes.resize(cells.width * rows_);
        cells.lengths.resize(rows_);
    }
    states_.resize(rows_);
    ++layout_;
}

bool ODBCInsert::Add(String& error, const RowSet& rows) {
    if (count_ == 0) {
        long_row_ = IsLong(rows);
        if (!long_row_) MakeRoom(rows);
    }
    std::size_t next = 0;
    for (const DataValue& value : rows.Row) {
        if (!value.Included) continue;
        if (next == cells_.size()) break;
        if (!Put(error, cells_[next++], value)) {
            long_row_ = false;
            return false;
        }
    }
    if (next != cells_.size()) {
        error = u"Cound not build SQL statement";  // published spelling
        long_row_ = false;
        return false;
    }
    ++count_;
    return true;
}

bool ODBCInsert::Put(String& error, Cells& cells, const DataValue& value) {
    if (!long_row_) {
        return PutInto(error, cells, value, cells.bytes.data() + count_ * cells.width,
                       cells.lengths[count_]);
    }
    cells.long_value.resize(std::max<std::size_t>(BytesFor(cells, value), 1));
    return PutInto(error, cells, value, cells.long_value.data(), cells.lengths[0]);
}

bool ODBCInsert::PutInto(String& error, const Cells& cells, const DataValue& value, char* to,
                         std::int64_t& length) const {
    if (value.IsNull) {
        length = SQL_NULL_DATA;
        return true;
    }
    const StringView text = value.Text;
    const StringView shown = text.substr(0, kShownUnits);
    std::uint64_t replaced = 0;
    length = 1;
    switch (cells.form) {
        case Form::Utf16:
            length = static_cast<std::int64_t>(text.size() * sizeof(char16_t));
            text.copy(reinterpret_cast<char16_t*>(to), text.size());
            break;
        case Form::Utf8:
            length = EncodeUtf8(text, to, replaced) - to;
            break;
        case Form::Bytes:
            length = static_cast<std::int64_t>(text.size() / 2);
            if (BytesOfDigits(text, to)) break;
            error = Format(u"Column '%s' takes bytes: '%s' is not their hexadecimal digits.",
                           cells.column.Name, shown);
            return false;
        case Form::Bit:
            *to = static_cast<signed char>(BitOf(text));
            if (*to >= 0) break;
            error = Format(u"Column '%s' takes a bit: '%s' is none.", cells.column.Name, shown);
            return false;
    }
    return true;
}

void ODBCInsert::Clear() {
    count_ = 0;
    long_row_ = false;
}

// ---- Statements ----

String ODBCInsert::StatementFor(std::size_t rows) const {
    String list = u" (";
    for (std::size_t i = 0; i < cells_.size(); ++i) list += i == 0 ? u"?" : u",?";
    list += u')';
    String statement(habits_.insert_start);
    statement += target_.head + list;
    for (std::size_t row = 1; row < rows; ++row) (statement += u',') += list;
    return statement += target_.end;
}

bool ODBCInsert::Fail(String& error, const Prepared& prepared) const {
    error = u"ODBCDatabase::Insert execution error: " +
            odbc::Diagnostic(session_.environment, session_.connection, prepared.handle.Get());
    return false;
}

bool ODBCInsert::PrepareFor(String& error, Prepared& prepared, std::size_t rows) {
    if (prepared.rows == rows) return true;
    prepared.rows = 0;
    prepared.layout = 0;
    prepared.handle = ODBCHandle(ODBCHandle::Kind::Statement, session_.connection);
    if (!prepared.handle ||
        !odbc::Prepare(prepared.handle.Get(), StatementFor(rows), session_.narrow)) {
        return Fail(error, prepared);
    }
    prepared.rows = rows;
    return true;
}

bool ODBCInsert::Bind(const Prepared& prepared, std::size_t parameter, Cells& cells, char* value,
                      std::int64_t* length) const {
    const ColumnDefinition& column = cells.column;
    SQLSMALLINT value_type = SQL_C_WCHAR;
    auto type = static_cast<SQLSMALLINT>(habits_.texts ? kSqlWVarchar : column.ConciseType);
    if (type == SQL_UNKNOWN_TYPE) type = SQL_WVARCHAR;
    switch (cells.form) {
        case Form::Utf16:
            break;
        case Form::Utf8:
            value_type = SQL_C_CHAR;
            if (habits_.texts) type = SQL_VARCHAR;
            break;
        case Form::Bytes:
            value_type = SQL_C_BINARY;
            type = static_cast<SQLSMALLINT>(column.ConciseType);
            break;
        case Form::Bit:
            value_type = SQL_C_BIT;
            type = SQL_BIT;
            break;
    }
    static_assert(sizeof(SQLLEN) == sizeof(std::int64_t));
    return odbc::Succeeded(SQLBindParameter(
        prepared.handle.Get(), static_cast<SQLUSMALLINT>(parameter + 1), SQL_PARAM_INPUT,
        value_type, type, static_cast<SQLULEN>(std::max(column.Length, 0)),
        static_cast<SQLSMALLINT>(std::max(column.Digits, 0)), value,
        static_cast<SQLLEN>(cells.width), reinterpret_cast<SQLLEN*>(length)));
}

// Binds the parameters to the cells of rows from `first_row` on.
bool ODBCInsert::BindCells(const Prepared& prepared, std::size_t first_row, std::size_t rows,
                           Which which) {
    for (std::size_t row = 0; row < rows; ++row) {
        for (std::size_t i = 0; i < cells_.size(); ++i) {
            Cells& cells = cells_[i];
            if (which == Which::Bytes && cells.form != Form::Bytes) continue;
            const std::size_t cell = first_row + row;
            if (!Bind(prepared, row * cells_.size() + i, cells,
                      cells.bytes.data() + cell * cells.width, &cells.lengths[cell])) {
                return false;
            }
        }
    }
    return true;
}

bool ODBCInsert::BindLongRow(const Prepared& prepared) {
    for (std::size_t i = 0; i < cells_.size(); ++i) {
        Cells& cells = cells_[i];
        if (!Bind(prepared, i, cells, cells.long_value.data(), cells.lengths.data())) return false;
    }
    return true;
}

bool ODBCInsert::Execute(String& error, const Prepared& prepared) const {
    return odbc::SucceededOrNoData(SQLExecute(prepared.handle.Get())) || Fail(error, prepared);
}

bool ODBCInsert::SendOne(String& error, std::size_t position) {
    if (!PrepareFor(error, one_, 1)) return false;
    const bool bound = long_row_ ? BindLongRow(one_) : BindCells(one_, position, 1);
    return bound ? Execute(error, one_) : Fail(error, one_);
}

bool ODBCInsert::Send(String& error) {
    if (count_ == 0) return true;
    if (long_row_) return SendOne(error, 0);
    return habits_.sets ? SendSets(error) : SendStatement(error);
}

bool ODBCInsert::SendStatement(String& error) {
    Prepared& prepared = count_ == rows_ ? whole_ : part_;
    if (!PrepareFor(error, prepared, count_)) return false;
    return BindAnew(prepared) ? Execute(error, prepared) : Fail(error, prepared);
}

// Cells that have moved, and those whose lengths the driver would else not look at.
bool ODBCInsert::BindAnew(Prepared& prepared) {
    if (prepared.layout != layout_) {
        if (!BindCells(prepared, 0, count_)) return false;
        prepared.layout = layout_;
        return true;
    }
    return !habits_.lengths_when_bound || BindCells(prepared, 0, count_, Which::Bytes);
}

// A statement for sets is bound once and never executed with a single one: MariaDB's driver would
// free memory that is not its own.
bool ODBCInsert::PrepareSets(String& error) {
    if (whole_.rows == 1 && whole_.layout == layout_) return true;
    whole_.rows = 0;
    if (!PrepareFor(error, whole_, 1)) return false;
    if (!BindCells(whole_, 0, 1) ||
        !odbc::Succeeded(
            SQLSetStmtAttrW(whole_.handle.Get(), SQL_ATTR_PARAM_STATUS_PTR, states_.data(), 0))) {
        return Fail(error, whole_);
    }
    whole_.layout = layout_;
    return true;
}

// Some drivers execute the sets one by one and go on behind one that fails, with a state for each.
bool ODBCInsert::SendSets(String& error) {
    if (count_ == 1) return SendOne(error, 0);
    if (!PrepareSets(error)) return false;
    std::fill(states_.begin(), states_.end(), static_cast<std::uint16_t>(SQL_PARAM_SUCCESS));
    if (!odbc::Succeeded(SQLSetStmtAttrW(whole_.handle.Get(), SQL_ATTR_PARAMSET_SIZE,
                                         NumberPointer(count_), 0))) {
        return Fail(error, whole_);
    }
    if (!Execute(error, whole_)) return false;
    const bool refused = std::any_of(states_.begin(), states_.end(), [](std::uint16_t state) {
        return state == SQL_PARAM_ERROR || state == SQL_PARAM_UNUSED;
    });
    return !refused || Fail(error, whole_);
}

// (ODBC reference, SQLGetInfo, SQL_CURSOR_COMMIT_BEHAVIOR)
void ODBCInsert::TransactionEnded() {
    SQLUSMALLINT behavior = SQL_CB_PRESERVE;
    SQLGetInfoW(session_.connection, SQL_CURSOR_COMMIT_BEHAVIOR, &behavior, sizeof behavior,
                nullptr);
    if (behavior != SQL_CB_DELETE) return;
    for (Prepared* prepared : {&whole_, &part_, &one_}) prepared->rows = 0;
}

}  // namespace DataStorages
