// How the statements of a database write names, types and values.
#pragma once

#include <vector>

#include "core/column_type.h"
#include "storages/identifier.h"

namespace sql {

// In the order of the words below. Plain: statements as this program has always written them, with
// the marks that a source tells for its columns. Connected: what the connected database has.
enum class Dialect { Plain, ANSI, SQLite, PostgreSQL, MySQL, SQLServer, Connected };
inline constexpr StringView kDialectWords =
    u"Plain ANSI SQLite PostgreSQL MySQL SQLServer Connected";
inline constexpr StringView kScriptDialectWords = u"Plain ANSI SQLite PostgreSQL MySQL SQLServer";

// The dialect of a database by what its driver calls it (ODBC reference, SQLGetInfo,
// SQL_DBMS_NAME); that of one which is not known here is ANSI.
Dialect DialectOf(StringView dbms_name);

struct DialectTraits;  // in sql_dialect.cpp
struct TypeWords;      // in dialect_types.cpp

// One dialect. ANSI is SQL:2008 without its optional features but for the types clob and blob and,
// in texts that hold a carriage return or a zero, Unicode escapes.
class SqlDialect {
public:
    // dialect: none of Plain and Connected, which have no words of their own
    static const SqlDialect& Of(Dialect dialect);
    // The same with the quotes around names that a driver tells (ODBC reference, SQLGetInfo,
    // SQL_IDENTIFIER_QUOTE_CHAR): one mark for both sides, or "[". Others change nothing.
    SqlDialect WithQuotes(StringView quotes) const;

    // Appends any name between the quotes of the dialect, those in it doubled: "name", `name`,
    // [name].
    void AppendName(String& statement, StringView name) const;
    // Appends the pieces of a name with full stops between them. An empty piece has no quotes, in
    // front it is left out.
    void AppendName(String& statement, const TableName& name) const;

    // The type of a column, with its size where the size is real: "varchar(40)". It is not where a
    // driver has none to tell (255 bytes, or 0) or tells the room of a long type; the column then
    // has the dialect's longest text or binary type. A size in brackets in the type's name counts
    // before any other. Numbers that no type of numbers can hold exactly are kept as text.
    String TypeOf(const ColumnDefinition& column) const;

    // As what the values of a column are written. Ask once for each column.
    ColumnKind LiteralKindOf(const ColumnDefinition& column) const;
    // Appends a value: a number bare, a bit as the dialect has it, binary bytes from hexadecimal
    // digits ("4142" or "X'4142'"), dates and times; a text whatever it holds. A value that is none
    // of its kind is a text, so no value can become anything else than a value.
    void AppendLiteral(String& statement, ColumnKind kind, StringView value) const;
    // Appends a text.
    void AppendText(String& statement, StringView text) const;

    // What ends a statement of a script.
    static constexpr StringView StatementEnd() { return u";"; }
    // What says of a column that it may be NULL: " null", or nothing where that is understood.
    StringView NullableWord() const;

private:
    SqlDialect(const DialectTraits& traits, const TypeWords& types);

    const DialectTraits& traits_;
    const TypeWords& types_;
    char16_t open_quote_;
    char16_t close_quote_;
};

}  // namespace sql
