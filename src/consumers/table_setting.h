#pragma once

#include "config/section_settings.h"
#include "storages/identifier.h"

namespace sql {

// The table that a key names. Macros in it are replaced anew for each result set. The value of a
// macro is one whole name where the job's rules say so; otherwise it may hold full stops and quotes
// that divide the name.
class TableSetting {
public:
    TableSetting(const SectionSettings& settings, Key key);

    // The value with its macros.
    const String& Unresolved() const { return setting_; }
    // As it was written, macros replaced; a piece that is the value of a macro as a whole name
    // stands between double quotes.
    String Text() const;
    // Its pieces, macros replaced, without quotes.
    TableName Name() const;
    // The same where the rows tell their table: "$TABLE$" and "$SCHEMA$" are that table's.
    TableName NameOf(StringView table, StringView schema) const;

private:
    SectionSettings settings_;
    String setting_;
    bool macro_is_one_name_;
};

}  // namespace sql
