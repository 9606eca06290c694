#pragma once

#include <gtest/gtest.h>

#include <string_view>
#include <utility>
#include <vector>

#include "base/utf8.h"
#include "config/configuration.h"
#include "config/section_settings.h"
#include "support/scratch.h"

namespace testing_support {

using Settings = std::vector<std::pair<String, String>>;

// A job of one step, for what is made from the settings of one of its sections.
class OneStep {
public:
    explicit OneStep(const platform::Clock& clock = platform::SystemClock(),
                     std::string_view globals = "")
        : configuration_(clock) {
        const ScratchFolder folder;
        folder.Write("job", "Globals\n" + std::string(globals) + "Step #1\nSettings\n");
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

// One row as text: values separated by "|", "<null>" for NULL.
inline std::string RowText(const DataRow& row) {
    std::string text;
    for (const DataValue& value : row) {
        if (&value != row.data()) text += "|";
        text += value.IsNull ? "<null>" : ToUtf8(value.Text);
    }
    return text;
}

// The names of the columns, separated by "|".
inline std::string ColumnNames(const RowSet& rows) {
    std::string text;
    for (const ColumnDefinition& column : rows.Columns) {
        if (&column != rows.Columns.data()) text += "|";
        text += ToUtf8(column.Name);
    }
    return text;
}

// All rows that are left in the current result set of a source or a database.
template <class Rows>
std::vector<std::string> FetchAll(Rows& from, RowSet& rows, bool track_widths = false) {
    std::vector<std::string> all;
    String error;
    while (from.Fetch(error, rows, track_widths)) all.push_back(RowText(rows.Row));
    EXPECT_EQ(ToUtf8(error), "");
    return all;
}

}  // namespace testing_support
