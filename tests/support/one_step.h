#pragma once

#include "base/utf8.h"
#include "config/section_settings.h"
#include "core/row_set.h"
#include "support/scratch.h"

namespace testing_support {

using Settings = std::vector<std::pair<String, String>>;

// A job of one step, for what is made from the settings of one of its sections.
class OneStep {
public:
    explicit OneStep(const platform::Clock& clock = platform::SystemClock(),
                     const std::string& globals = "")
        : configuration_(clock) {
        const ScratchFolder folder;
        folder.Write("job", "Globals\n" + globals + "Step #1\nSettings\n");
        String error;
        EXPECT_TRUE(configuration_.Read(error, folder.Path("job"))) << ToUtf8(error);
    }

    Configuration& Job() { return configuration_; }
    // The section with exactly these settings.
    SectionSettings With(Section section, const Settings& settings) {
        ParameterSet& set = configuration_.Step(0).List(section);
        set = {};
        for (const auto& [name, value] : settings) set.Set(name, value);
        return {configuration_, section};
    }

private:
    Configuration configuration_;
};

// The names of the columns, each with "|" behind it.
inline std::string ColumnNames(const RowSet& rows) {
    std::string text;
    for (const ColumnDefinition& column : rows.Columns) text += ToUtf8(column.Name) + "|";
    return text;
}

// All rows that are left in the current result set of a source or a database: the values of each,
// "<null>" for NULL, each with "|" behind it.
template <class Rows>
std::vector<std::string> FetchAll(Rows& from, RowSet& rows, bool track_widths = false) {
    std::vector<std::string> all;
    String error;
    while (from.Fetch(error, rows, track_widths)) {
        all.emplace_back();
        for (const DataValue& value : rows.Row)
            all.back() += (value.IsNull ? "<null>" : ToUtf8(value.Text)) + "|";
    }
    EXPECT_EQ(ToUtf8(error), "");
    return all;
}

}  // namespace testing_support
