// What the machine and the ODBC drivers allow, to hold the program's times against:
//
//   bench_limits lines INPUT OUTPUT           read in 16 MiB chunks, one write call a line
//   bench_limits split INPUT OUTPUT           the same in 1 MiB pieces, each line split at commas
//                                             outside quotes through UTF-16
//   bench_limits odbc CONNECT QUERY OUTPUT    bare SQLFetch and SQLGetData, one write call a row
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
            fields_.push_back(std::u16string_view(wide_).substr(start, i - start));
            start = i + 1;
        }
        fields_.push_back(std::u16string_view(wide_).substr(start));
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

void CopyQuery(const char* connect_string, const char* query, int output) {
    // The driver manager converts text for some drivers by the locale.
    std::setlocale(LC_CTYPE, "C.UTF-8");
    SQLHENV environment = nullptr;
    SQLHDBC connection = nullptr;
    SQLHSTMT statement = nullptr;
    SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment);
    const std::uintptr_t version = SQL_OV_ODBC3;  // a number, passed as a pointer
    // NOLINTNEXTLINE(performance-no-int-to-ptr): ODBC's interface
    SQLSetEnvAttr(environment, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(version), 0);
    SQLAllocHandle(SQL_HANDLE_DBC, environment, &connection);
    std::u16string connect_text = Widen(connect_string);
    Check(SQLDriverConnectW(connection, nullptr, ToOdbc(connect_text), SQL_NTS, nullptr, 0, nullptr,
                            SQL_DRIVER_NOPROMPT),
          SQL_HANDLE_DBC, connection, "SQLDriverConnect");
    SQLAllocHandle(SQL_HANDLE_STMT, connection, &statement);
    std::u16string query_text = Widen(query);
    Check(SQLExecDirectW(statement, ToOdbc(query_text), SQL_NTS), SQL_HANDLE_STMT, statement,
          "SQLExecDirect");
    WriteRows(statement, output);
    SQLFreeHandle(SQL_HANDLE_STMT, statement);
    SQLDisconnect(connection);
    SQLFreeHandle(SQL_HANDLE_DBC, connection);
    SQLFreeHandle(SQL_HANDLE_ENV, environment);
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
    } else {
        Fail(
            "usage: bench_limits lines INPUT OUTPUT | split INPUT OUTPUT | odbc CONNECT QUERY "
            "OUTPUT");
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    std::fprintf(stderr, "%.3f s\n", elapsed.count());
    return EXIT_SUCCESS;
}
