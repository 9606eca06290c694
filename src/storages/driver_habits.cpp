#include "storages/driver_habits.h"

#include <algorithm>

#include "files/text.h"

namespace DataStorages {
namespace {

// The reasons were measured with 40,000 and 100,000 rows of 8 columns in one transaction, and with
// the values of every type that the database has.
constexpr DriverHabits kKnown[] = {
    // Rows one by one take twice as long as 50 a statement, sets likewise: the driver walks
    // through them. Its parameters go up to 999 in old versions.
    {.product = u"SQLite",
     .driver = u"",
     .rows = 50,
     .most_parameters = 999,
     .charset_query = {},
     .wide_integers = true},
    // Rows one by one take fifteen times as long as 100 a statement, sets twice as long. With the
    // type of the column the driver reads dates and numbers itself: no infinity, and a float of
    // 1.5e10 arrives as 1.5000001e10.
    {.product = u"PostgreSQL",
     .driver = u"",
     .rows = 100,
     .most_parameters = 16'000,
     .charset_query = {},
     .texts = true},
    // Sets go to the server as one message: half the time of 50 rows a statement as UTF-8, which
    // is half the time of UTF-16. With the type of the column the driver reads times itself, and
    // refuses those of more than a day.
    {.product = u"MariaDB",
     .driver = u"maodbc",
     .rows = 1'000,
     .most_parameters = 60'000,
     .sets = true,
     .charset_query = u"select @@character_set_client",
     .texts = true,
     .bits = true,
     .overruns = true},
    {.product = u"MySQL",
     .driver = u"",
     .rows = 50,
     .most_parameters = 60'000,
     .charset_query = {},
     .bits = true},
    // Not measured: up to 1,000 rows and 2,100 parameters a statement.
    {.product = u"Microsoft SQL Server",
     .driver = u"",
     .rows = 50,
     .most_parameters = 2'000,
     .charset_query = {}},
};

constexpr DriverHabits kUnknown{.product = u"",
                                .driver = u"",
                                .rows = 1'000,
                                .most_parameters = 2'000,
                                .sets = true,
                                .charset_query = {}};

bool Matches(const DriverHabits& habits, StringView product, StringView driver) {
    return text::EqualsIgnoringCase(product.substr(0, habits.product.size()), habits.product) &&
           text::Lowered(driver).find(habits.driver) != String::npos;
}

}  // namespace

const DriverHabits& HabitsOf(StringView product, StringView driver) {
    const auto* const known =
        std::find_if(std::begin(kKnown), std::end(kKnown),
                     [&](const DriverHabits& habits) { return Matches(habits, product, driver); });
    return known == std::end(kKnown) ? kUnknown : *known;
}

}  // namespace DataStorages
