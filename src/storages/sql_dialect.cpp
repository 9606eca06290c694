#include "storages/sql_dialect.h"

#include <algorithm>
#include <cassert>

#include "files/format.h"
#include "files/number_text.h"
#include "files/text.h"
#include "storages/dialect_types.h"

namespace sql {

struct DialectTraits {
    char16_t open_quote;
    char16_t close_quote;
    void (*append_text)(String& statement, StringView text);
    StringView binary_prefix;
    StringView binary_suffix;
    StringView bits[2];  // false, true
    void (*append_time)(const SqlDialect& dialect, String& statement, ColumnKind kind,
                        StringView value);
    // The digits up to which a bare number is read exactly; others stand as texts.
    std::size_t integer_digits;
    std::size_t decimal_digits;
    StringView nullable_word;
};

namespace {

constexpr std::size_t kAnyDigits = StringView::npos;

bool HoldsOneOf(StringView text, StringView units) {
    return text.find_first_of(units) != StringView::npos;
}

void AppendQuoted(String& statement, StringView text) {
    statement += u'\'';
    AppendDoubling(statement, text, u'\'');
    statement += u'\'';
}

// A text with a letter behind a backslash for some units; quotes doubled.
// escaped, letters: the units, and at the same positions what stands for them
void AppendEscaped(String& statement, StringView text, StringView escaped, StringView letters) {
    statement += u'\'';
    for (const char16_t unit : text) {
        const std::size_t found = escaped.find(unit);
        if (found != StringView::npos) {
            statement += u'\\';
            statement += letters[found];
        } else {
            statement.append(unit == u'\'' ? 2 : 1, unit);
        }
    }
    statement += u'\'';
}

// ---- Texts ----

// Clients that read a script by lines make one line end of CR LF; a line feed alone they keep.
constexpr StringView kLineEndsAndZero{u"\r\n\0", 3};
constexpr StringView kReturnAndZero{u"\r\0", 2};

// Unicode escapes (SQL:2003, section 5.3) are refused by databases that lack them, while a line end
// that becomes another goes unseen.
void AppendAnsiText(String& statement, StringView text) {
    if (!HoldsOneOf(text, kReturnAndZero)) {
        AppendQuoted(statement, text);
        return;
    }
    statement += u"U&'";
    for (const char16_t unit : text) {
        if (unit < u' ') {
            statement += Format(u"\\%04X", static_cast<unsigned>(unit));
        } else {
            statement.append(unit == u'\'' || unit == u'\\' ? 2 : 1, unit);
        }
    }
    statement += u'\'';
}

// A backslash outside such a text is an escape where standard_conforming_strings is off.
void AppendPostgresText(String& statement, StringView text) {
    constexpr StringView kEscaped{u"\\\r\n\0", 4};
    if (!HoldsOneOf(text, kEscaped)) {
        AppendQuoted(statement, text);
        return;
    }
    statement += u'E';
    AppendEscaped(statement, text, kEscaped, u"\\rn0");
}

// Its clients end a script at a Control-Z on some systems.
void AppendMySqlText(String& statement, StringView text) {
    constexpr StringView kEscaped{u"\\\r\n\0\x1A", 5};
    AppendEscaped(statement, text, kEscaped, u"\\rn0Z");
}

struct Replaced {
    StringView unit;
    StringView code;  // what gives the unit
    String mark;      // what stands for it in the text
};

// A mark that the text does not hold. It begins with what it does not end with, so no mark can
// arise where one meets the text around it.
String MarkFor(StringView text, StringView code) {
    for (unsigned number = 0;; ++number) {
        String mark = number == 0 ? Format(u"\\%s.", code) : Format(u"\\%s.%u.", code, number);
        if (text.find(mark) == StringView::npos) return mark;
    }
}

// Writes "replace('one\10.two','\10.',char(10))" for a text with line ends: calls around the whole
// text, because databases limit how many pieces one expression may join.
// prefix: of text literals; suffix: behind the text; function: makes a character of its code
void AppendWithMarks(String& statement, StringView text, StringView prefix, StringView suffix,
                     StringView function) {
    std::vector<Replaced> replaced;
    String marked(text);
    for (const auto& [unit, code] : {std::pair<StringView, StringView>{u"\r", u"13"},
                                     {u"\n", u"10"},
                                     {kLineEndsAndZero.substr(2), u"0"}}) {
        if (marked.find(unit) == String::npos) continue;
        replaced.push_back({unit, code, MarkFor(marked, code)});
        text::ReplaceAll(marked, unit, replaced.back().mark);
    }
    for (std::size_t i = 0; i < replaced.size(); ++i) statement += u"replace(";
    statement += prefix;
    AppendQuoted(statement, marked);
    if (!replaced.empty()) statement += suffix;
    for (auto one = replaced.rbegin(); one != replaced.rend(); ++one) {
        statement += Format(u",%s'%s',%s(%s))", prefix, one->mark, function, one->code);
    }
}

void AppendSqliteText(String& statement, StringView text) {
    AppendWithMarks(statement, text, {}, {}, u"char");
}

// A text is compared letter by letter there only under a binary collation.
void AppendSqlServerText(String& statement, StringView text) {
    AppendWithMarks(statement, text, u"N", u" collate Latin1_General_BIN2", u"nchar");
}

// ---- Dates and times ----

// The pattern of a date or a time: "9" stands for a digit.
bool HasForm(StringView value, StringView pattern) {
    return value.size() == pattern.size() &&
           std::equal(value.begin(), value.end(), pattern.begin(), [](char16_t unit, char16_t at) {
               return at == u'9' ? unit >= u'0' && unit <= u'9' : unit == at;
           });
}

constexpr StringView kDateForm = u"9999-99-99";
constexpr StringView kTimeForm = u"99:99:99";
constexpr std::size_t kTimestampSize = 19;  // "9999-99-99 99:99:99"

bool IsTime(StringView value) {
    const StringView fraction = value.substr(std::min(value.size(), kTimeForm.size()));
    return HasForm(value.substr(0, kTimeForm.size()), kTimeForm) &&
           (fraction.empty() || (fraction.size() > 1 && fraction.front() == u'.' &&
                                 fraction.find_first_not_of(u"0123456789", 1) == StringView::npos));
}

bool IsTimestamp(StringView value) {
    return value.size() >= kTimestampSize && value[kDateForm.size()] == u' ' &&
           HasForm(value.substr(0, kDateForm.size()), kDateForm) &&
           IsTime(value.substr(kDateForm.size() + 1));
}

bool IsDateOrTime(ColumnKind kind, StringView value) {
    if (kind == ColumnKind::Date) return HasForm(value, kDateForm);
    return kind == ColumnKind::Time ? IsTime(value) : IsTimestamp(value);
}

void AppendTimeAsText(const SqlDialect& dialect, String& statement, ColumnKind /*kind*/,
                      StringView value) {
    dialect.AppendText(statement, value);
}

// SQL-92, section 5.3: date '2024-02-29'.
void AppendAnsiTime(const SqlDialect& dialect, String& statement, ColumnKind kind,
                    StringView value) {
    if (IsDateOrTime(kind, value)) {
        statement += kind == ColumnKind::Date   ? u"date "
                     : kind == ColumnKind::Time ? u"time "
                                                : u"timestamp ";
    }
    dialect.AppendText(statement, value);
}

// The forms that mean the same whatever the session says of the order of day and month.
void AppendSqlServerTime(const SqlDialect& dialect, String& statement, ColumnKind kind,
                         StringView value) {
    String form(value);
    if (IsDateOrTime(kind, value)) {
        if (kind == ColumnKind::Date) std::erase(form, u'-');
        if (kind == ColumnKind::Timestamp) form[kDateForm.size()] = u'T';
    }
    dialect.AppendText(statement, form);
}

// ---- Binary values ----

bool IsHex(StringView text) {
    return text.size() % 2 == 0 &&
           text.find_first_not_of(u"0123456789abcdefABCDEF") == StringView::npos;
}

// The digits of a binary value: "4142", or "X'4142'" as SQLite's driver has them.
bool FindHex(StringView value, StringView& digits) {
    const bool marked = value.size() >= 3 &&
                        (value.starts_with(u"X'") || value.starts_with(u"x'")) &&
                        value.ends_with(u'\'');
    digits = marked ? value.substr(2, value.size() - 3) : value;
    return IsHex(digits);
}

// ---- Bits ----

// What drivers tell of a bit.
int BitOf(StringView value) {
    for (const StringView word : {u"1", u"t", u"true", u"-1"}) {
        if (text::EqualsIgnoringCase(value, word)) return 1;
    }
    for (const StringView word : {u"0", u"f", u"false"}) {
        if (text::EqualsIgnoringCase(value, word)) return 0;
    }
    return -1;
}

// ---- The dialects ----

constexpr DialectTraits kAnsi = {
    u'"',           u'"',       AppendAnsiText, u"x'", u"'", {u"false", u"true"},
    AppendAnsiTime, kAnyDigits, kAnyDigits,     {}};
// Numbers have 64 bits there, whole ones or not.
constexpr DialectTraits kSqlite = {
    u'"', u'"', AppendSqliteText, u"x'", u"'", {u"0", u"1"}, AppendTimeAsText, 18, 15, {}};
constexpr DialectTraits kPostgres = {u'"',
                                     u'"',
                                     AppendPostgresText,
                                     u"E'\\\\x",
                                     u"'::bytea",
                                     {u"false", u"true"},
                                     AppendTimeAsText,
                                     kAnyDigits,
                                     kAnyDigits,
                                     {}};
constexpr DialectTraits kMySql = {u'`',       u'`',         AppendMySqlText,  u"x'",
                                  u"'",       {u"0", u"1"}, AppendTimeAsText, kAnyDigits,
                                  kAnyDigits, u" null"};
constexpr DialectTraits kSqlServer = {u'[',       u']',         AppendSqlServerText, u"0x",
                                      {},         {u"0", u"1"}, AppendSqlServerTime, kAnyDigits,
                                      kAnyDigits, u" null"};

}  // namespace

Dialect DialectOf(StringView dbms_name) {
    struct Name {
        StringView word;
        Dialect dialect;
    };
    constexpr Name kNames[] = {{u"sqlite", Dialect::SQLite},
                               {u"postgresql", Dialect::PostgreSQL},
                               {u"mysql", Dialect::MySQL},
                               {u"mariadb", Dialect::MySQL},
                               {u"microsoft sql server", Dialect::SQLServer}};
    const String name = text::Lowered(dbms_name);
    for (const Name& known : kNames) {
        if (name.starts_with(known.word)) return known.dialect;
    }
    return Dialect::ANSI;
}

const SqlDialect& SqlDialect::Of(Dialect dialect) {
    static const SqlDialect ansi(kAnsi, kAnsiTypes);
    static const SqlDialect sqlite(kSqlite, kSqliteTypes);
    static const SqlDialect postgres(kPostgres, kPostgresTypes);
    static const SqlDialect mysql(kMySql, kMySqlTypes);
    static const SqlDialect sql_server(kSqlServer, kSqlServerTypes);
    switch (dialect) {
        case Dialect::SQLite:
            return sqlite;
        case Dialect::PostgreSQL:
            return postgres;
        case Dialect::MySQL:
            return mysql;
        case Dialect::SQLServer:
            return sql_server;
        case Dialect::Plain:
        case Dialect::Connected:
            assert(false);
            break;
        case Dialect::ANSI:
            break;
    }
    return ansi;
}

SqlDialect::SqlDialect(const DialectTraits& traits, const TypeWords& types)
    : traits_(traits),
      types_(types),
      open_quote_(traits.open_quote),
      close_quote_(traits.close_quote) {}

SqlDialect SqlDialect::WithQuotes(StringView quotes) const {
    SqlDialect same = *this;
    if (quotes.size() == 1 && quotes != u" ") {
        same.open_quote_ = quotes.front();
        same.close_quote_ = quotes == u"[" ? u']' : quotes.front();
    }
    return same;
}

void SqlDialect::AppendName(String& statement, StringView name) const {
    statement += open_quote_;
    AppendDoubling(statement, name, close_quote_);
    statement += close_quote_;
}

void SqlDialect::AppendName(String& statement, const TableName& name) const {
    bool begun = false;
    for (const String& piece : name) {
        if (begun) statement += u'.';
        const StringView name_of_piece = piece;
        if (!piece.empty()) AppendName(statement, name_of_piece);
        begun = begun || !piece.empty();
    }
}

String SqlDialect::TypeOf(const ColumnDefinition& column) const { return TypeWord(types_, column); }

ColumnKind SqlDialect::LiteralKindOf(const ColumnDefinition& column) const {
    return KeepsNumberAsText(types_, column) ? ColumnKind::Text : KindOf(column);
}

void SqlDialect::AppendText(String& statement, StringView text) const {
    traits_.append_text(statement, text);
}

void SqlDialect::AppendLiteral(String& statement, ColumnKind kind, StringView value) const {
    if (IsNumber(kind)) {
        const std::size_t most =
            kind == ColumnKind::Integer ? traits_.integer_digits : traits_.decimal_digits;
        const bool exact = kind == ColumnKind::Float || SignificantDigits(value) <= most;
        if (exact && AppendNumber(statement, value)) return;
    } else if (kind == ColumnKind::Bit) {
        if (const int bit = BitOf(value); bit >= 0) {
            statement += traits_.bits[bit];
            return;
        }
    } else if (kind == ColumnKind::Binary) {
        if (StringView digits; FindHex(value, digits)) {
            statement.append(traits_.binary_prefix).append(digits).append(traits_.binary_suffix);
            return;
        }
    } else if (kind != ColumnKind::Text) {
        traits_.append_time(*this, statement, kind, value);
        return;
    }
    AppendText(statement, value);
}

StringView SqlDialect::NullableWord() const { return traits_.nullable_word; }

}  // namespace sql
