#pragma once

#include <cstddef>

#include "base/strings.h"

namespace DataStorages {

// How rows reach a database fastest, and whole, through its driver, and what it does to others.
struct DriverHabits {
    StringView product;               // what the name of the database begins with (SQL_DBMS_NAME)
    StringView driver;                // what the file name of the driver holds; empty: any
    StringView since;                 // the first version (SQL_DBMS_VER) it is true of; empty: any
    std::size_t rows = 1;             // a statement
    std::size_t most_parameters = 0;  // a statement
    // Rows are sets of parameters of a statement for one row (ODBC reference, "Arrays of Parameter
    // Values"); else the statement has as many rows.
    bool sets = false;
    // Stands in front of an insert statement with parameters.
    StringView insert_start;
    // Tells the session's character set. Where that is UTF-8, values that are inserted, and those
    // that are read in blocks, travel as UTF-8, else, and where there is no such query, as UTF-16.
    StringView charset_query;
    // Values of all types but binary ones travel as texts whose type the server finds; else with
    // the type of their column.
    bool texts = false;
    // BIT takes the number 0 or 1, and gives the character of that number; a text is taken for the
    // bits themselves.
    bool bits = false;
    // INTEGER has 64 bits, whatever the driver tells.
    bool wide_integers = false;
    // Texts without a size are told as those of 255 characters, bits with a few less than they are,
    // and computed numbers with the digits of the rows read so far.
    bool guesses_sizes = false;
    // All times are told as those without fractions of a second.
    bool hides_fractions = false;
    // A value longer than its cell makes the driver read behind memory of its own.
    bool overruns = false;
    // How many bytes a binary value has is read when its cell is bound, not when the statement is
    // executed.
    bool lengths_when_bound = false;
};

// What holds for a database; one that is not known gets sets of parameters with the columns' types.
// version: numbers with full stops between them; what follows those is not looked at
const DriverHabits& HabitsOf(StringView product, StringView version, StringView driver);

}  // namespace DataStorages
