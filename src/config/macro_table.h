#pragma once

#include <optional>
#include <vector>

#include "base/strings.h"
#include "core/parameter_set.h"

// The macros of a run that have a value of their own: those of the user, and "$TABLE$" and
// "$SCHEMA$", the table that the step's source reads. Those of date and time are made anew for each
// value.
class MacroTable {
public:
    // A user macro; its name has its "$" signs. Of two with the same name the first counts.
    void Define(StringView name, StringView value) {
        user_.push_back({String(name), String(value)});
    }
    const std::vector<ParameterSet::Element>& UserMacros() const { return user_; }
    // Replaces user macros, in the order of their definition. What was inserted is not searched
    // again for the same macro.
    void ReplaceUser(String& value) const;

    // Tells which table the step reads from now on. A new step begins without one.
    // schema: its schema; empty where there is none
    void NameTable(StringView table, StringView schema) {
        table_ = table;
        schema_ = schema;
    }
    void ForgetTable() {
        table_.reset();
        schema_.clear();
    }
    const std::optional<String>& Table() const { return table_; }
    const String& Schema() const { return schema_; }

private:
    std::vector<ParameterSet::Element> user_;
    std::optional<String> table_;
    String schema_;  // of that table
};

// The first macro from `start` on: "$", a capital, then capitals, digits and underscores, "$". A
// view into `value`; empty when there is none.
StringView FindMacro(StringView value, std::size_t start = 0);

inline constexpr StringView kDateMacro = u"$DATE$";
inline constexpr StringView kTimeMacro = u"$TIME$";
inline constexpr StringView kTableMacro = u"$TABLE$";
inline constexpr StringView kSchemaMacro = u"$SCHEMA$";
