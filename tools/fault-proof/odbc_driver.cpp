// An ODBC driver that holds one table of its own making and misbehaves as it is asked to. Words of
// the connect string:
//
//   Rows=N         rows of each result set (10)
//   Sets=N         result sets of a query (1)
//   Store=FILE     takes the rows that are inserted, a line each, when they are committed
//   Fail=CALL:N    the N-th call of that name fails; "any" counts them all. "CALL:N+": also those
//                  behind it
//   Report=FILE    gets the name of the call that failed
//   Refuse=N       refuses the statement attribute of that number (27: rows of a block, 22: rows of
//                  parameters)
//   NoBlocks=1     says that values of a block cannot be asked for again
//   LastRow=1      says that they can, and hands out those of the last row
//   NoTotal=1      does not know how long a value is
//   Short=1        tells of the long texts that they have 60 characters at most
//   Piece=N        nor does it hand out more than so many characters of one at a time
//
// Any query reads the table; "insert into ..." takes rows of literals or of parameters.
#include <dlfcn.h>
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

using Text = std::u16string;
using TextView = std::u16string_view;
using Cell = std::optional<Text>;
using Row = std::vector<Cell>;

struct Column {
    const char16_t* name;
    SQLSMALLINT type;
    const char16_t* type_name;
    SQLULEN size;
};
constexpr Column kTable[] = {
    {u"id", SQL_INTEGER, u"integer", 10},         {u"name", SQL_WVARCHAR, u"varchar", 40},
    {u"note", SQL_WLONGVARCHAR, u"text", 100000}, {u"price", SQL_DECIMAL, u"decimal", 10},
    {u"day", SQL_TYPE_DATE, u"date", 10},
};

Text Wide(std::string_view text) { return {text.begin(), text.end()}; }

// Words of ASCII and file names alone pass here.
std::string Narrow(TextView text) {
    std::string narrow;
    for (const char16_t unit : text) narrow += static_cast<char>(unit);
    return narrow;
}

// For the store, in which a line is a row: UTF-16 units as numbers where they are not plain.
std::string Stored(const Cell& cell) {
    if (!cell) return "\\N";
    std::string line;
    for (const char16_t unit : *cell) {
        const bool plain = unit >= u' ' && unit < 0x7F && unit != u'\\';
        if (plain) {
            line += static_cast<char>(unit);
        } else {
            line.append("\\").append(std::to_string(static_cast<unsigned>(unit))).append(";");
        }
    }
    return line;
}

Row TableRow(std::size_t number) {
    const Text digits = Wide(std::to_string(number));
    Text name = u"row-";
    name.append(digits).append(u" \u00e9,\"q\" 'a'");
    Text day = u"2020-02-0";
    day.append(Wide(std::to_string(number % 9 + 1)));
    Row row{digits, std::move(name), std::nullopt, Text(digits).append(u".50"), std::move(day)};
    if (number % 4 != 0) row[2] = Text(number % 3 == 0 ? 5000 : number, u'x') + u"\n<end>";
    return row;
}

struct Binding {
    SQLSMALLINT type = SQL_C_WCHAR;
    void* data = nullptr;
    SQLLEN room = 0;
    SQLLEN* indicator = nullptr;
};

// ---- Handles ----

// What every handle keeps of its last failure.
struct Handle {
    virtual ~Handle() = default;
    bool failed = false;
    Text message;
};

struct Environment : Handle {};

struct Connection : Handle {
    std::map<std::string, std::string> words;
    std::map<std::string, long> calls;  // by name, and "any"
    bool commits = true;                // each statement by itself
    std::vector<Row> pending;
    std::map<Text, std::size_t> savepoints;  // rows that were pending

    long Number(const std::string& word, long otherwise) const {
        const auto found = words.find(word);
        return found == words.end() ? otherwise : std::atol(found->second.c_str());
    }
    bool Commit();
};

struct Statement : Handle {
    explicit Statement(Connection& owner) : connection(owner) {}
    Connection& connection;
    Text text;
    std::vector<Column> columns;
    std::vector<Row> rows;
    std::size_t next = 0;     // row to be fetched
    std::size_t current = 0;  // row of the cursor
    long sets_left = 0;
    std::map<SQLUSMALLINT, Binding> cells;
    std::map<SQLUSMALLINT, Binding> parameters;
    std::map<SQLINTEGER, SQLPOINTER> attributes;
    std::pair<std::size_t, SQLUSMALLINT> reading{0, 0};  // the value whose pieces are handed out
    std::size_t handed_out = 0;

    std::size_t Size(SQLINTEGER attribute) const {
        const auto found = attributes.find(attribute);
        return found == attributes.end() ? 1 : reinterpret_cast<std::size_t>(found->second);
    }
    template <class Value>
    Value* Place(SQLINTEGER attribute) const {
        const auto found = attributes.find(attribute);
        return found == attributes.end() ? nullptr : static_cast<Value*>(found->second);
    }
};

SQLRETURN Fail(Handle& handle, Text message) {
    handle.failed = true;
    handle.message = std::move(message);
    return SQL_ERROR;
}

Connection& ConnectionOf(Connection& connection) { return connection; }
Connection& ConnectionOf(Statement& statement) { return statement.connection; }

// Whether this call is one that shall fail. The calls are those that reach the driver.
bool IsToFail(Connection& connection, const char* call) {
    const std::string wanted = connection.words["Fail"];
    const std::size_t colon = wanted.find(':');
    const std::string name = wanted.substr(0, colon);
    if (colon == std::string::npos || (name != "any" && name != call)) return false;
    const long number = ++connection.calls[name];
    const long at = std::atol(wanted.c_str() + colon + 1);
    if (wanted.back() == '+' ? number < at : number != at) return false;
    const std::string report = connection.words["Report"];
    if (number == at && !report.empty()) std::ofstream(report, std::ios::app) << call << '\n';
    return true;
}

// A call that may be asked to fail, and one that must not let exceptions into the driver manager.
template <class Owner, class Work>
SQLRETURN Call(const char* name, SQLHANDLE handle, Work work) {
    auto& owner = *static_cast<Owner*>(static_cast<Handle*>(handle));
    try {
        owner.failed = false;
        if (IsToFail(ConnectionOf(owner), name)) return Fail(owner, u"lost");
        return static_cast<SQLRETURN>(work(owner));
    } catch (const std::bad_alloc&) {
        return Fail(owner, Text());
    }
}

// Puts text into a caller's buffer. sizes in units
template <class Size>
SQLRETURN Put(TextView text, void* buffer, std::size_t room, Size* length, std::size_t unit_bytes) {
    if (length != nullptr) *length = static_cast<Size>(text.size() * unit_bytes);
    if (buffer == nullptr || room == 0) return SQL_SUCCESS;
    const std::size_t count = std::min(text.size(), room - 1);
    auto* const units = static_cast<char16_t*>(buffer);
    text.copy(units, count);
    units[count] = u'\0';
    return count < text.size() ? SQL_SUCCESS_WITH_INFO : SQL_SUCCESS;
}

Text Given(const SQLWCHAR* text, SQLINTEGER length) {
    if (text == nullptr) return {};
    const auto* const units = reinterpret_cast<const char16_t*>(text);
    return length == SQL_NTS ? Text(units) : Text(units, static_cast<std::size_t>(length));
}

// ---- Statements ----

// False when the store does not take the rows.
bool Connection::Commit() {
    const std::string store = words["Store"];
    if (!store.empty() && !pending.empty()) {
        std::string lines;
        for (const Row& row : pending) {
            for (std::size_t i = 0; i < row.size(); ++i) {
                lines.append(i == 0 ? "" : "\t").append(Stored(row[i]));
            }
            lines += '\n';
        }
        std::ofstream file(store, std::ios::app | std::ios::binary);
        if (!(file << lines << std::flush)) return false;
    }
    pending.clear();
    savepoints.clear();
    return true;
}

// One literal or parameter mark at the start of `text`, which loses it.
bool TakeValue(TextView& text, Row& row, const Row& parameters, std::size_t& used) {
    const auto word_end = std::min(text.find_first_of(u",) \n"), text.size());
    if (text.starts_with(u'?')) {
        if (used == parameters.size()) return false;
        row.push_back(parameters[used++]);
        text.remove_prefix(1);
        return true;
    }
    for (const TextView kind : {u"N'", u"date '"}) {
        if (text.starts_with(kind)) text.remove_prefix(kind.size() - 1);
    }
    if (!text.starts_with(u'\'')) {
        const TextView word = text.substr(0, word_end);
        row.push_back(word == u"NULL" || word == u"null" ? Cell() : Cell(word));
        text.remove_prefix(word_end);
        return !word.empty();
    }
    Text value;
    for (text.remove_prefix(1); !text.empty(); text.remove_prefix(1)) {
        if (text.starts_with(u"''")) {
            text.remove_prefix(1);
        } else if (text.front() == u'\'') {
            text.remove_prefix(1);
            row.push_back(std::move(value));
            return true;
        }
        value += text.front();
    }
    return false;
}

// What follows "values": (1, 'a'), (2, NULL)
bool TakeRows(TextView text, const Row& parameters, std::vector<Row>& rows) {
    std::size_t used = 0;
    const auto skip = [&] {
        while (!text.empty() && (text[0] == u' ' || text[0] == u'\n' || text[0] == u',')) {
            text.remove_prefix(1);
        }
    };
    for (skip(); text.starts_with(u'('); skip()) {
        text.remove_prefix(1);
        Row& row = rows.emplace_back();
        for (skip(); !text.starts_with(u')'); skip()) {
            if (text.empty() || !TakeValue(text, row, parameters, used)) return false;
        }
        text.remove_prefix(1);
        if (row.size() != std::size(kTable)) return false;
    }
    return !rows.empty();
}

Cell ParameterOf(const Binding& binding, std::size_t set) {
    const SQLLEN bytes = binding.indicator == nullptr ? SQL_NTS : binding.indicator[set];
    if (bytes == SQL_NULL_DATA) return std::nullopt;
    const char* const data =
        static_cast<const char*>(binding.data) + set * static_cast<std::size_t>(binding.room);
    if (binding.type != SQL_C_WCHAR) {
        return Wide({data, bytes < 0 ? std::strlen(data) : static_cast<std::size_t>(bytes)});
    }
    const auto* const units = reinterpret_cast<const char16_t*>(data);
    return bytes < 0 ? Text(units) : Text(units, static_cast<std::size_t>(bytes) / 2);
}

SQLRETURN Insert(Statement& statement) {
    const std::size_t values = statement.text.find(u"values");
    Connection& connection = statement.connection;
    const TextView text = statement.text;
    std::vector<Row> made;
    const std::size_t sets = std::max<std::size_t>(statement.Size(SQL_ATTR_PARAMSET_SIZE), 1);
    for (std::size_t set = 0; set < sets; ++set) {
        Row parameters;
        for (const auto& [number, binding] : statement.parameters) {
            parameters.push_back(ParameterOf(binding, set));
        }
        if (values == Text::npos || !TakeRows(text.substr(values + 6), parameters, made)) {
            return Fail(statement, Text(u"no rows of the table: ").append(statement.text));
        }
    }
    if (auto* const processed = statement.Place<SQLULEN>(SQL_ATTR_PARAMS_PROCESSED_PTR)) {
        *processed = sets;
    }
    std::move(made.begin(), made.end(), std::back_inserter(connection.pending));
    if (connection.commits && !connection.Commit()) return Fail(statement, u"store");
    return SQL_SUCCESS;
}

void Answer(Statement& statement) {
    statement.columns.assign(std::begin(kTable), std::end(kTable));
    if (statement.connection.Number("Short", 0) != 0) {
        statement.columns[2].type = SQL_WVARCHAR;
        statement.columns[2].size = 60;
    }
    statement.rows.clear();
    for (long i = 1; i <= statement.connection.Number("Rows", 10); ++i) {
        statement.rows.push_back(TableRow(static_cast<std::size_t>(i)));
    }
    statement.next = 0;
}

// The result of a call of the catalogue.
SQLRETURN List(Statement& statement, std::size_t columns, std::vector<Row> rows) {
    statement.columns.assign(columns, {u"item", SQL_WVARCHAR, u"varchar", 128});
    statement.rows = std::move(rows);
    statement.next = 0;
    statement.sets_left = 0;
    return SQL_SUCCESS;
}

SQLRETURN Execute(Statement& statement) {
    const TextView text = statement.text;
    const auto begins = [&](TextView word) { return text.starts_with(word); };
    Connection& connection = statement.connection;
    statement.columns.clear();
    if (begins(u"insert") || begins(u"INSERT")) return Insert(statement);
    if (begins(u"savepoint ")) {
        connection.savepoints[Text(text.substr(10))] = connection.pending.size();
        return SQL_SUCCESS;
    }
    if (begins(u"rollback to ")) {
        const auto found = connection.savepoints.find(Text(text.substr(text.rfind(u' ') + 1)));
        if (found == connection.savepoints.end()) return Fail(statement, u"no such savepoint");
        connection.pending.resize(std::min(found->second, connection.pending.size()));
        return SQL_SUCCESS;
    }
    if (begins(u"release ")) return SQL_SUCCESS;
    if (!begins(u"select")) return Fail(statement, u"not understood");
    statement.sets_left = connection.Number("Sets", 1) - 1;
    Answer(statement);
    return SQL_SUCCESS;
}

// ---- Values ----

// Puts what is left of a value into its place, or as much of it as there is room for.
SQLRETURN PutValue(Statement& statement, TextView rest, const Binding& to) {
    const Connection& connection = statement.connection;
    const long piece = connection.Number("Piece", 0);
    std::size_t room = static_cast<std::size_t>(to.room) / sizeof(char16_t);
    if (piece != 0) room = std::min(room, static_cast<std::size_t>(piece) + 1);
    const SQLRETURN result = Put<SQLLEN>(rest, to.data, room, to.indicator, sizeof(char16_t));
    statement.handed_out += room == 0 ? 0 : std::min(rest.size(), room - 1);
    const bool knows = piece == 0 && connection.Number("NoTotal", 0) == 0;
    if (to.indicator != nullptr && !knows) *to.indicator = SQL_NO_TOTAL;
    if (result != SQL_SUCCESS) statement.message = u"cut";
    return result;
}

const Cell& CellAt(const Statement& statement, std::size_t row, SQLUSMALLINT column) {
    return statement.rows[row][column - 1u];
}

SQLRETURN FetchInto(Statement& statement, std::size_t block_row) {
    SQLRETURN result = SQL_SUCCESS;
    for (const auto& [number, binding] : statement.cells) {
        if (number == 0 || number > statement.columns.size()) continue;
        Binding to = binding;
        to.data = static_cast<char*>(to.data) + block_row * static_cast<std::size_t>(to.room);
        if (to.indicator != nullptr) to.indicator += block_row;
        const Cell& cell = CellAt(statement, statement.next, number);
        if (!cell) {
            if (to.indicator != nullptr) *to.indicator = SQL_NULL_DATA;
        } else if (PutValue(statement, *cell, to) != SQL_SUCCESS) {
            result = SQL_SUCCESS_WITH_INFO;
        }
    }
    return result;
}

SQLRETURN Fetch(Statement& statement) {
    const std::size_t block = statement.Size(SQL_ATTR_ROW_ARRAY_SIZE);
    auto* const fetched = statement.Place<SQLULEN>(SQL_ATTR_ROWS_FETCHED_PTR);
    auto* const states = statement.Place<SQLUSMALLINT>(SQL_ATTR_ROW_STATUS_PTR);
    SQLRETURN result = SQL_SUCCESS;
    std::size_t count = 0;
    statement.current = statement.next;
    statement.reading = {};
    for (; count < block && statement.next < statement.rows.size(); ++count, ++statement.next) {
        result = std::max(result, FetchInto(statement, count));
        if (states != nullptr) states[count] = SQL_ROW_SUCCESS;
    }
    for (std::size_t i = count; states != nullptr && i < block; ++i) states[i] = SQL_ROW_NOROW;
    if (fetched != nullptr) *fetched = count;
    return count == 0 ? static_cast<SQLRETURN>(SQL_NO_DATA) : result;
}

SQLRETURN GetData(Statement& statement, SQLUSMALLINT number, const Binding& to) {
    if (statement.current >= statement.rows.size() || number == 0 ||
        number > statement.columns.size() || to.type != SQL_C_WCHAR) {
        return Fail(statement, u"no such value");
    }
    const std::pair place{statement.current, number};
    const bool goes_on = statement.reading == place;
    const Cell& cell = CellAt(statement, statement.current, number);
    statement.reading = place;
    if (!cell) {
        *to.indicator = SQL_NULL_DATA;
        return SQL_SUCCESS;
    }
    if (!goes_on) statement.handed_out = 0;
    if (goes_on && statement.handed_out >= cell->size()) return SQL_NO_DATA;
    const TextView text = *cell;
    return PutValue(statement, text.substr(statement.handed_out), to);
}

SQLRETURN Describe(Statement& statement, SQLUSMALLINT number, SQLUSMALLINT field, void* text,
                   SQLSMALLINT room, SQLSMALLINT* length, SQLLEN* value) {
    if (number == 0 || number > statement.columns.size()) return Fail(statement, u"no such column");
    const Column& column = statement.columns[number - 1u];
    const auto say = [&](TextView word) -> SQLRETURN {
        return Put(word, text, static_cast<std::size_t>(room) / sizeof(char16_t), length,
                   sizeof(char16_t));
    };
    const auto tell = [&](SQLLEN what) -> SQLRETURN {
        if (value != nullptr) *value = what;
        return SQL_SUCCESS;
    };
    const bool quoted = column.type != SQL_INTEGER && column.type != SQL_DECIMAL;
    switch (field) {
        case SQL_DESC_NAME:
        case SQL_DESC_LABEL:
            return say(column.name);
        case SQL_DESC_TABLE_NAME:
            return say(u"t");
        case SQL_DESC_TYPE_NAME:
        case SQL_DESC_LOCAL_TYPE_NAME:
            return say(column.type_name);
        case SQL_DESC_LITERAL_PREFIX:
        case SQL_DESC_LITERAL_SUFFIX:
            return say(quoted ? u"'" : u"");
        case SQL_DESC_TYPE:
        case SQL_DESC_CONCISE_TYPE:
            return tell(column.type);
        case SQL_DESC_NULLABLE:
            return tell(SQL_NULLABLE);
        case SQL_DESC_LENGTH:
        case SQL_DESC_PRECISION:
        case SQL_DESC_DISPLAY_SIZE:
        case SQL_COLUMN_LENGTH:
        case SQL_COLUMN_PRECISION:
            return tell(static_cast<SQLLEN>(column.size));
        case SQL_DESC_OCTET_LENGTH:
            return tell(static_cast<SQLLEN>(column.size) * 2);
        case SQL_DESC_SCALE:
            return tell(column.type == SQL_DECIMAL ? 2 : 0);
        default:
            return tell(0);
    }
}

SQLRETURN TellAbility(const Connection& connection, SQLUSMALLINT what, SQLPOINTER value,
                      SQLSMALLINT room, SQLSMALLINT* length) {
    const auto say = [&](TextView word) -> SQLRETURN {
        return Put(word, value, static_cast<std::size_t>(room) / sizeof(char16_t), length,
                   sizeof(char16_t));
    };
    constexpr SQLUINTEGER kBlocks = SQL_GD_ANY_COLUMN | SQL_GD_ANY_ORDER | SQL_GD_BOUND;
    switch (what) {
        case SQL_DRIVER_ODBC_VER:
            return say(u"03.52");
        case SQL_IDENTIFIER_QUOTE_CHAR:
            return say(u"\"");
        case SQL_SEARCH_PATTERN_ESCAPE:
            return say(u"\\");
        case SQL_DBMS_NAME:
        case SQL_DRIVER_NAME:
            return say(u"fault-proof");
        case SQL_GETDATA_EXTENSIONS:
            *static_cast<SQLUINTEGER*>(value) =
                kBlocks | (connection.Number("NoBlocks", 0) != 0 ? 0u : SQL_GD_BLOCK);
            return SQL_SUCCESS;
        case SQL_CURSOR_COMMIT_BEHAVIOR:
        case SQL_CURSOR_ROLLBACK_BEHAVIOR:
            *static_cast<SQLUSMALLINT*>(value) = SQL_CB_PRESERVE;
            return SQL_SUCCESS;
        case SQL_TXN_CAPABLE:
            *static_cast<SQLUSMALLINT*>(value) = SQL_TC_ALL;
            return SQL_SUCCESS;
        default:
            if (room > 2) return say(u"");
            if (value != nullptr) *static_cast<SQLUSMALLINT*>(value) = 0;
            return SQL_SUCCESS;
    }
}

}  // namespace

// A call of a statement, and of a connection.
#define STATEMENT(NAME, PARAMETERS, ...)                                                           \
    SQLRETURN NAME PARAMETERS {                                                                    \
        return Call<Statement>(#NAME, handle,                                                      \
                               [&]([[maybe_unused]] Statement& statement) -> int { __VA_ARGS__ }); \
    }
#define CONNECTION(NAME, PARAMETERS, ...)                                            \
    SQLRETURN NAME PARAMETERS {                                                      \
        return Call<Connection>(#NAME, handle,                                       \
                                [&](Connection& connection) -> int { __VA_ARGS__ }); \
    }

extern "C" {

// ---- Handles ----

SQLRETURN SQLAllocHandle(SQLSMALLINT kind, SQLHANDLE parent, SQLHANDLE* made) {
    *made = nullptr;
    const auto hold = [&](auto handle) -> SQLRETURN {
        *made = static_cast<Handle*>(handle.release());
        return SQL_SUCCESS;
    };
    try {
        if (kind == SQL_HANDLE_ENV) return hold(std::make_unique<Environment>());
        if (kind == SQL_HANDLE_DBC) return hold(std::make_unique<Connection>());
        return Call<Connection>("SQLAllocHandle", parent, [&](Connection& connection) -> int {
            return hold(std::make_unique<Statement>(connection));
        });
    } catch (const std::bad_alloc&) {
        return SQL_ERROR;
    }
}

SQLRETURN SQLFreeHandle(SQLSMALLINT, SQLHANDLE handle) {
    const std::unique_ptr<Handle> owned(static_cast<Handle*>(handle));
    return SQL_SUCCESS;
}

SQLRETURN SQLSetEnvAttr(SQLHENV, SQLINTEGER, SQLPOINTER, SQLINTEGER) { return SQL_SUCCESS; }

SQLRETURN SQLDriverConnectW(SQLHDBC handle, SQLHWND, SQLWCHAR* text, SQLSMALLINT length, SQLWCHAR*,
                            SQLSMALLINT, SQLSMALLINT*, SQLUSMALLINT) {
    auto& connection = *static_cast<Connection*>(static_cast<Handle*>(handle));
    const std::string given = Narrow(Given(text, length));
    for (std::size_t from = 0; from < given.size();) {
        const std::size_t end = std::min(given.find(';', from), given.size());
        const std::string word = given.substr(from, end - from);
        const std::size_t equals = std::min(word.find('='), word.size());
        connection.words[word.substr(0, equals)] = word.substr(std::min(equals + 1, word.size()));
        from = end + 1;
    }
    return Call<Connection>("SQLDriverConnectW", handle, [](Connection&) { return SQL_SUCCESS; });
}

SQLRETURN SQLDisconnect(SQLHDBC) { return SQL_SUCCESS; }

SQLRETURN SQLGetDiagRecW(SQLSMALLINT, SQLHANDLE handle, SQLSMALLINT number, SQLWCHAR* state,
                         SQLINTEGER* native, SQLWCHAR* message, SQLSMALLINT room,
                         SQLSMALLINT* length) {
    const auto& owner = *static_cast<Handle*>(handle);
    if (number != 1 || owner.message.empty()) return SQL_NO_DATA;
    std::memcpy(state, owner.failed ? u"HY000" : u"01004", sizeof(u"HY000"));
    if (native != nullptr) *native = 7;
    return Put(owner.message, message, static_cast<std::size_t>(room), length, 1);
}

// The driver manager wants to know no more than the record tells.
SQLRETURN SQLGetDiagFieldW(SQLSMALLINT, SQLHANDLE, SQLSMALLINT, SQLSMALLINT, SQLPOINTER,
                           SQLSMALLINT, SQLSMALLINT*) {
    return SQL_NO_DATA;
}

CONNECTION(SQLGetInfoW,
           (SQLHDBC handle, SQLUSMALLINT what, SQLPOINTER value, SQLSMALLINT room,
            SQLSMALLINT* length),
           return TellAbility(connection, what, value, room, length);)

CONNECTION(
    SQLSetConnectAttrW, (SQLHDBC handle, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER),
    if (attribute == SQL_ATTR_AUTOCOMMIT) {
        connection.commits = reinterpret_cast<std::size_t>(value) != SQL_AUTOCOMMIT_OFF;
        if (connection.commits && !connection.Commit()) return Fail(connection, u"store");
    } return SQL_SUCCESS;)

CONNECTION(SQLGetConnectAttrW, (SQLHDBC handle, SQLINTEGER, SQLPOINTER, SQLINTEGER, SQLINTEGER*),
           return Fail(connection, u"not known");)

SQLRETURN SQLEndTran(SQLSMALLINT, SQLHANDLE handle, SQLSMALLINT how) {
    return Call<Connection>("SQLEndTran", handle, [&](Connection& connection) -> int {
        if (how == SQL_COMMIT && !connection.Commit()) return Fail(connection, u"store");
        connection.pending.clear();
        return SQL_SUCCESS;
    });
}

// ---- Statements ----

STATEMENT(
    SQLSetStmtAttrW, (SQLHSTMT handle, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER),
    if (attribute == statement.connection.Number("Refuse", -1)) {
        return Fail(statement, u"refused");
    } statement.attributes[attribute] = value;
    return SQL_SUCCESS;)

STATEMENT(SQLGetStmtAttrW,
          (SQLHSTMT handle, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER, SQLINTEGER*),
          *static_cast<SQLPOINTER*>(value) = statement.Place<void>(attribute);
          return SQL_SUCCESS;)

STATEMENT(SQLPrepareW, (SQLHSTMT handle, SQLWCHAR* text, SQLINTEGER length),
          statement.text = Given(text, length);
          if (statement.text.starts_with(u"select")) Answer(statement); return SQL_SUCCESS;)

STATEMENT(SQLExecute, (SQLHSTMT handle), return Execute(statement);)

STATEMENT(SQLExecDirectW, (SQLHSTMT handle, SQLWCHAR* text, SQLINTEGER length),
          statement.text = Given(text, length);
          return Execute(statement);)

STATEMENT(SQLBindParameter,
          (SQLHSTMT handle, SQLUSMALLINT number, SQLSMALLINT, SQLSMALLINT type, SQLSMALLINT,
           SQLULEN, SQLSMALLINT, SQLPOINTER data, SQLLEN room, SQLLEN* indicator),
          statement.parameters[number] = {type, data, room, indicator};
          return SQL_SUCCESS;)

STATEMENT(SQLNumParams, (SQLHSTMT handle, SQLSMALLINT* count),
          *count = static_cast<SQLSMALLINT>(std::count(statement.text.begin(), statement.text.end(),
                                                       u'?'));
          return SQL_SUCCESS;)

STATEMENT(SQLRowCount, (SQLHSTMT handle, SQLLEN* count), *count = -1; return SQL_SUCCESS;)

STATEMENT(SQLFreeStmt, (SQLHSTMT handle, SQLUSMALLINT what),
          if (what == SQL_UNBIND) statement.cells.clear();
          if (what == SQL_RESET_PARAMS) statement.parameters.clear();
          if (what == SQL_CLOSE) statement.rows.clear(); return SQL_SUCCESS;)

SQLRETURN SQLCloseCursor(SQLHSTMT handle) { return SQLFreeStmt(handle, SQL_CLOSE); }

// ---- Results ----

STATEMENT(SQLNumResultCols, (SQLHSTMT handle, SQLSMALLINT* count),
          *count = static_cast<SQLSMALLINT>(statement.columns.size());
          return SQL_SUCCESS;)

STATEMENT(SQLColAttributeW,
          (SQLHSTMT handle, SQLUSMALLINT number, SQLUSMALLINT field, SQLPOINTER text,
           SQLSMALLINT room, SQLSMALLINT* length, SQLLEN* value),
          return Describe(statement, number, field, text, room, length, value);)

STATEMENT(
    SQLDescribeColW,
    (SQLHSTMT handle, SQLUSMALLINT number, SQLWCHAR* name, SQLSMALLINT room, SQLSMALLINT* length,
     SQLSMALLINT* type, SQLULEN* size, SQLSMALLINT* digits, SQLSMALLINT* nullable),
    if (number == 0 || number > statement.columns.size()) {
        return Fail(statement, u"no such column");
    } const Column& column = statement.columns[number - 1u];
    if (type != nullptr) * type = column.type; if (size != nullptr) * size = column.size;
    if (digits != nullptr) * digits = column.type == SQL_DECIMAL ? 2 : 0;
    if (nullable != nullptr) * nullable = SQL_NULLABLE;
    return Put(column.name, name, static_cast<std::size_t>(room), length, 1);)

STATEMENT(SQLBindCol,
          (SQLHSTMT handle, SQLUSMALLINT number, SQLSMALLINT type, SQLPOINTER data, SQLLEN room,
           SQLLEN* indicator),
          statement.cells[number] = {type, data, room, indicator};
          return SQL_SUCCESS;)

STATEMENT(SQLFetch, (SQLHSTMT handle), return Fetch(statement);)

STATEMENT(SQLGetData,
          (SQLHSTMT handle, SQLUSMALLINT number, SQLSMALLINT type, SQLPOINTER data, SQLLEN room,
           SQLLEN* indicator),
          return GetData(statement, number, {type, data, room, indicator});)

STATEMENT(SQLSetPos, (SQLHSTMT handle, SQLSETPOSIROW row, SQLUSMALLINT, SQLUSMALLINT),
          const std::size_t block = statement.Size(SQL_ATTR_ROW_ARRAY_SIZE);
          const std::size_t count = (statement.next - 1) % block + 1;
          const bool last = statement.connection.Number("LastRow", 0) != 0;
          statement.current = statement.next - (last ? 1 : count - row + 1); statement.reading = {};
          return SQL_SUCCESS;)

STATEMENT(SQLMoreResults, (SQLHSTMT handle), if (statement.sets_left <= 0) return SQL_NO_DATA;
          --statement.sets_left; Answer(statement); return SQL_SUCCESS;)

// ---- Catalogue ----

STATEMENT(SQLTablesW,
          (SQLHSTMT handle, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT,
           SQLWCHAR* type, SQLSMALLINT length),
          const bool views = Given(type, length) == u"VIEW";
          std::vector<Row> rows;
          if (!views) rows.push_back({Cell(), Cell(), u"t", u"TABLE", Cell()});
          return List(statement, 5, std::move(rows));)

STATEMENT(
    SQLColumnsW,
    (SQLHSTMT handle, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT,
     SQLWCHAR*, SQLSMALLINT),
    std::vector<Row> rows;
    for (const Column& column
         : kTable) {
        rows.push_back(Row(18));
        rows.back()[2].emplace(u"t");
        rows.back()[3].emplace(column.name);
        rows.back()[4].emplace(Wide(std::to_string(column.type)));
        rows.back()[5].emplace(column.type_name);
        rows.back()[6].emplace(Wide(std::to_string(column.size)));
        rows.back()[10].emplace(u"1");
    } return List(statement, 18, std::move(rows));)
}
