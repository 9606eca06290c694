// What the machine and the ODBC drivers allow, to hold the program's times against:
//
//   bench_limits lines INPUT OUTPUT           read in 16 MiB chunks, one write call a line
//   bench_limits split INPUT OUTPUT           the same in 1 MiB pieces, each line split at commas
//                                             outside quotes through UTF-16
//   bench_limits odbc CONNECT QUERY OUTPUT    bare SQLFetch and SQLGetData, one write call a row
//   bench_limits blocks CONNECT QUERY OUTPUT  columns bound in blocks of rows, gathered output
//   bench_limits load CONNECT TABLE INPUT     insert statements of 50 rows of literals, all in one
//                                             transaction; INPUT as PostgreSQL's COPY has it, its
//                                             values without escapes
//
// "-" stands for standard input and standard output. The elapsed seconds go to standard error.
#include <fcntl.h>
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <clocale>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::size_t kChunkBytes = 16'777'216;
constexpr std::size_t kValueCharacters = 32'768;

[[noreturn]] void Fail(const std::string& what) {
    std::fprintf(stderr, "bench_limits: %s\n", what.c_str());
    std::exit(EXIT_FAILURE);
}

[[noreturn]] void FailWithErrno(const std::string& what) {
    Fail(what + ": " + std::strerror(errno));
}

int OpenInput(const char* name) {
    if (std::string_view(name) == "-") return STDIN_FILENO;
    const int descriptor = ::open(name, O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) FailWithErrno(name);
    return descriptor;
}

int OpenOutput(const char* name) {
    if (std::string_view(name) == "-") return STDOUT_FILENO;
    const int descriptor = ::open(name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (descriptor < 0) FailWithErrno(name);
    return descriptor;
}

void Write(int descriptor, const char* bytes, std::size_t count) {
    while (count > 0) {
        const ssize_t written = ::write(descriptor, bytes, count);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) FailWithErrno("write");
        bytes += written;
        count -= static_cast<std::size_t>(written);
    }
}

std::size_t Read(int descriptor, char* bytes, std::size_t count) {
    ssize_t got = 0;
    do {
        got = ::read(descriptor, bytes, count);
    } while (got < 0 && errno == EINTR);
    if (got < 0) FailWithErrno("read");
    return static_cast<std::size_t>(got);
}

void CopyLines(int input, int output) {
    std::vector<char> chunk(kChunkBytes);
    std::string cut_line;  // the part of a line that the last chunk held
    while (const std::size_t filled = Read(input, chunk.data(), chunk.size())) {
        const char* at = chunk.data();
        const char* const end = at + filled;
        while (at != end) {
            const auto left = static_cast<std::size_t>(end - at);
            const auto* found = static_cast<const char*>(std::memchr(at, '\n', left));
            if (found == nullptr) {
                cut_line.append(at, left);
                break;
            }
            const auto length = static_cast<std::size_t>(found + 1 - at);
            if (cut_line.empty()) {
                Write(output, at, length);
            } else {
                cut_line.append(at, length);
                Write(output, cut_line.data(), cut_line.size());
                cut_line.clear();
            }
            at += length;
        }
    }
    Write(output, cut_line.data(), cut_line.size());
}

// ---- Splitting ----

// Cuts lines at commas outside quotes and joins them again with commas, in UTF-16 between bytes and
// bytes. Output is gathered.
class SplittingCopy {
public:
    explicit SplittingCopy(int output) : output_(output) {}

    void Line(std::string_view line) {
        wide_.resize(line.size());
        for (std::size_t i = 0; i < line.size(); ++i) {
            wide_[i] = static_cast<unsigned char>(line[i]);
        }
        Split();
        joined_.clear();
        for (std::size_t i = 0; i < fields_.size(); ++i) {
            if (i > 0) joined_.push_back(u',');
            joined_.append(fields_[i]);
        }
        const std::size_t start = gathered_.size();
        gathered_.resize(start + joined_.size());
        for (std::size_t i = 0; i < joined_.size(); ++i) {
            gathered_[start + i] = static_cast<char>(joined_[i] & 0xFF);
        }
        gathered_ += "\r\n";
        if (gathered_.size() >= kGatheredBytes) Flush();
    }
    void Flush() {
        Write(output_, gathered_.data(), gathered_.size());
        gathered_.clear();
    }

private:
    static constexpr std::size_t kGatheredBytes = 1'048'576;

    void Split() {
        fields_.clear();
        bool inside = false;
        std::size_t start = 0;
        for (std::size_t i = 0; i < wide_.size(); ++i) {
            if (wide_[i] == u'"') inside = !inside;
            if (wide_[i] != u',' || inside) continue;
            fields_.push_back(std::u16string_view{wide_}.substr(start, i - start));
            start = i + 1;
        }
        fields_.push_back(std::u16string_view{wide_}.substr(start));
    }

    const int output_;
    std::u16string wide_;
    std::u16string joined_;
    std::vector<std::u16string_view> fields_;
    std::string gathered_;
};

void SplitLines(int input, int output) {
    std::vector<char> chunk(kChunkBytes);
    SplittingCopy copy(output);
    std::string cut_line;
    while (const std::size_t filled = Read(input, chunk.data(), chunk.size())) {
        std::string_view rest(chunk.data(), filled);
        for (;;) {
            const std::size_t end = rest.find('\n');
            cut_line.append(rest.substr(0, end));
            if (end == std::string_view::npos) break;
            if (cut_line.ends_with('\r')) cut_line.pop_back();
            copy.Line(cut_line);
            cut_line.clear();
            rest.remove_prefix(end + 1);
        }
    }
    if (!cut_line.empty()) copy.Line(cut_line);
    copy.Flush();
}

// ---- ODBC ----

// Connect string and query are taken one character a byte, which is enough for plain ASCII.
std::u16string Widen(const char* text) {
    std::u16string wide;
    for (; *text != '\0'; ++text) wide += static_cast<unsigned char>(*text);
    return wide;
}

SQLWCHAR* ToOdbc(std::u16string& text) { return reinterpret_cast<SQLWCHAR*>(text.data()); }

void Check(SQLRETURN result, SQLSMALLINT type, SQLHANDLE handle, const char* what) {
    if (SQL_SUCCEEDED(result)) return;
    SQLCHAR state[6] = {};
    SQLCHAR message[512] = {};
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    SQLGetDiagRec(type, handle, 1, state, &native, message, sizeof message, &length);
    Fail(std::string(what) + ": " + reinterpret_cast<const char*>(message));
}

void WriteRows(SQLHSTMT statement, int output) {
    SQLSMALLINT columns = 0;
    SQLNumResultCols(statement, &columns);
    std::vector<char16_t> value(kValueCharacters);
    std::vector<char> row;
    for (;;) {
        const SQLRETURN fetched = SQLFetch(statement);
        if (fetched == SQL_NO_DATA) return;
        Check(fetched, SQL_HANDLE_STMT, statement, "SQLFetch");
        row.clear();
        for (SQLSMALLINT column = 1; column <= columns; ++column) {
            if (column > 1) row.push_back('\t');
            SQLLEN bytes = 0;
            const SQLRETURN read =
                SQLGetData(statement, static_cast<SQLUSMALLINT>(column), SQL_C_WCHAR, value.data(),
                           static_cast<SQLLEN>(kValueCharacters * sizeof(char16_t)), &bytes);
            Check(read, SQL_HANDLE_STMT, statement, "SQLGetData");
            if (bytes == SQL_NULL_DATA) {
                row.insert(row.end(), {'N', 'U', 'L', 'L'});
                continue;
            }
            const auto length = static_cast<std::size_t>(bytes) / sizeof(char16_t);
            if (bytes < 0 || length >= kValueCharacters) Fail("a value is too long");
            const std::size_t start = row.size();
            row.resize(start + length);
            for (std::size_t i = 0; i < length; ++i)
                row[start + i] = static_cast<char>(value[i] & 0xFF);
        }
        row.insert(row.end(), {'\r', '\n'});
        Write(output, row.data(), row.size());
    }
}

// A connection with one statement.
class Session {
public:
    explicit Session(const char* connect_string) {
        // The driver manager converts text for some drivers by the locale.
        std::setlocale(LC_CTYPE, "C.UTF-8");
        SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment_);
        SQLSetEnvAttr(environment_, SQL_ATTR_ODBC_VERSION, Number(SQL_OV_ODBC3), 0);
        SQLAllocHandle(SQL_HANDLE_DBC, environment_, &connection_);
        std::u16string text = Widen(connect_string);
        Check(SQLDriverConnectW(connection_, nullptr, ToOdbc(text), SQL_NTS, nullptr, 0, nullptr,
                                SQL_DRIVER_NOPROMPT),
              SQL_HANDLE_DBC, connection_, "SQLDriverConnect");
        SQLAllocHandle(SQL_HANDLE_STMT, connection_, &statement_);
    }
    ~Session() {
        SQLFreeHandle(SQL_HANDLE_STMT, statement_);
        SQLDisconnect(connection_);
        SQLFreeHandle(SQL_HANDLE_DBC, connection_);
        SQLFreeHandle(SQL_HANDLE_ENV, environment_);
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // Numbers are passed as pointers.
    static SQLPOINTER Number(std::uintptr_t number) {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): ODBC's interface
        return reinterpret_cast<SQLPOINTER>(number);
    }
    void Set(SQLINTEGER attribute, SQLPOINTER value) {
        Check(SQLSetStmtAttr(statement_, attribute, value, 0), SQL_HANDLE_STMT, statement_,
              "SQLSetStmtAttr");
    }
    void Execute(std::u16string text) {
        Check(SQLExecDirectW(statement_, ToOdbc(text), SQL_NTS), SQL_HANDLE_STMT, statement_,
              "SQLExecDirect");
    }
    void BeginTransaction() {
        Check(SQLSetConnectAttr(connection_, SQL_ATTR_AUTOCOMMIT, Number(SQL_AUTOCOMMIT_OFF), 0),
              SQL_HANDLE_DBC, connection_, "SQLSetConnectAttr");
    }
    void Commit() {
        Check(SQLEndTran(SQL_HANDLE_DBC, connection_, SQL_COMMIT), SQL_HANDLE_DBC, connection_,
              "SQLEndTran");
    }
    SQLHSTMT Statement() const { return statement_; }

private:
    SQLHENV environment_ = nullptr;
    SQLHDBC connection_ = nullptr;
    SQLHSTMT statement_ = nullptr;
};

void CopyQuery(const char* connect_string, const char* query, int output) {
    Session session(connect_string);
    session.Execute(Widen(query));
    WriteRows(session.Statement(), output);
}

// ---- Blocks ----

constexpr std::size_t kBlockRows = 1'000;
constexpr std::size_t kCellCharacters = 128;
constexpr std::size_t kOutputBytes = 1'048'576;

struct Cells {
    std::vector<char16_t> texts = std::vector<char16_t>(kBlockRows * kCellCharacters);
    std::vector<SQLLEN> lengths = std::vector<SQLLEN>(kBlockRows);
};

void AppendCell(std::string& rows, const Cells& cells, std::size_t row) {
    const SQLLEN bytes = cells.lengths[row];
    if (bytes == SQL_NULL_DATA) {
        rows += "NULL";
        return;
    }
    const auto length = static_cast<std::size_t>(bytes) / sizeof(char16_t);
    if (bytes < 0 || length >= kCellCharacters) Fail("a value is too long");
    const char16_t* const text = cells.texts.data() + row * kCellCharacters;
    for (std::size_t i = 0; i < length; ++i) rows += static_cast<char>(text[i] & 0xFF);
}

void CopyBlocks(const char* connect_string, const char* query, int output) {
    Session session(connect_string);
    SQLULEN fetched = 0;
    session.Set(SQL_ATTR_ROW_ARRAY_SIZE, Session::Number(kBlockRows));
    session.Set(SQL_ATTR_ROWS_FETCHED_PTR, &fetched);
    session.Execute(Widen(query));
    SQLSMALLINT count = 0;
    SQLNumResultCols(session.Statement(), &count);
    std::vector<Cells> columns(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < columns.size(); ++i) {
        Check(SQLBindCol(session.Statement(), static_cast<SQLUSMALLINT>(i + 1), SQL_C_WCHAR,
                         columns[i].texts.data(), kCellCharacters * sizeof(char16_t),
                         columns[i].lengths.data()),
              SQL_HANDLE_STMT, session.Statement(), "SQLBindCol");
    }
    std::string rows;
    for (;;) {
        const SQLRETURN result = SQLFetch(session.Statement());
        if (result == SQL_NO_DATA) break;
        Check(result, SQL_HANDLE_STMT, session.Statement(), "SQLFetch");
        for (std::size_t row = 0; row < fetched; ++row) {
            for (std::size_t i = 0; i < columns.size(); ++i) {
                if (i > 0) rows += '\t';
                AppendCell(rows, columns[i], row);
            }
            rows += "\r\n";
        }
        if (rows.size() < kOutputBytes) continue;
        Write(output, rows.data(), rows.size());
        rows.clear();
    }
    Write(output, rows.data(), rows.size());
}

// ---- Loading ----

constexpr std::size_t kStatementRows = 50;

// UTF-8 without characters beyond U+07FF, which the rows of the benchmarks do not have.
void AppendText(std::u16string& text, std::string_view bytes) {
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        if (byte < 0x80 || i + 1 == bytes.size()) {
            text += byte;
        } else {
            text += static_cast<char16_t>((byte & 0x1F) << 6 | (bytes[++i] & 0x3F));
        }
    }
}

void AppendLiterals(std::u16string& statement, std::string_view line) {
    statement += u'(';
    for (bool first = true;; first = false) {
        const std::size_t end = line.find('\t');
        const std::string_view value = line.substr(0, end);
        if (!first) statement += u',';
        if (value == "\\N") {
            statement += u"null";
        } else {
            statement += u'\'';
            AppendText(statement, value);
            statement += u'\'';
        }
        if (end == std::string_view::npos) break;
        line.remove_prefix(end + 1);
    }
    statement += u')';
}

void Load(const char* connect_string, const char* table, int input) {
    Session session(connect_string);
    session.BeginTransaction();
    const std::u16string head = u"insert into " + Widen(table) + u" values ";
    std::u16string statement;
    std::size_t count = 0;
    const auto send = [&] {
        if (count > 0) session.Execute(std::move(statement));
        statement.clear();
        count = 0;
    };
    std::vector<char> chunk(kChunkBytes);
    std::string line;
    while (const std::size_t filled = Read(input, chunk.data(), chunk.size())) {
        std::string_view rest(chunk.data(), filled);
        for (;;) {
            const std::size_t end = rest.find('\n');
            line.append(rest.substr(0, end));
            if (end == std::string_view::npos) break;
            rest.remove_prefix(end + 1);
            statement += count == 0 ? head : u",";
            AppendLiterals(statement, line);
            line.clear();
            if (++count == kStatementRows) send();
        }
    }
    send();
    session.Commit();
}

}  // namespace

int main(int argc, char** argv) {
    const std::string_view mode = argc > 1 ? argv[1] : "";
    const auto start = std::chrono::steady_clock::now();
    if (mode == "lines" && argc == 4) {
        CopyLines(OpenInput(argv[2]), OpenOutput(argv[3]));
    } else if (mode == "split" && argc == 4) {
        SplitLines(OpenInput(argv[2]), OpenOutput(argv[3]));
    } else if (mode == "odbc" && argc == 5) {
        CopyQuery(argv[2], argv[3], OpenOutput(argv[4]));
    } else if (mode == "blocks" && argc == 5) {
        CopyBlocks(argv[2], argv[3], OpenOutput(argv[4]));
    } else if (mode == "load" && argc == 5) {
        Load(argv[2], argv[3], OpenInput(argv[4]));
    } else {
        Fail(
            "usage: bench_limits lines|split INPUT OUTPUT | odbc|blocks CONNECT QUERY OUTPUT | "
            "load CONNECT TABLE INPUT");
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    std::fprintf(stderr, "%.3f s\n", elapsed.count());
    return EXIT_SUCCESS;
}
