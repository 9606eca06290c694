#pragma once

#include <cstdint>
#include <vector>

#include "consumers/file_target.h"

namespace DataConsumers {

// Writes the rows as an array of objects, in the manner of RFC 8259:
//
//     [ {"id":12,"path":"a\/b","note":null },
//      {"id":13,"path":"","note":"x" }]
//
// Texts that look like a number or null are written without quotes, names too, and control
// characters other than CR, LF and tab as they are, so not everything is strict JSON.
class JSONFile final : public FileTarget {
public:
    JSONFile()
        : FileTarget(
              {.overwrite = kOverwrite, .encoding = kNarrowEncoding, .ends_each_file = false}) {}
    static KeyList Keys();

    bool Prepare(String& error, RowSet& rows) override;
    // "JSONFile: Broken row structure [Values: %d, Structure: %d for '%s']"; without a text when no
    // file is open.
    bool Write(String& error, RowSet& rows) override;

private:
    bool BeginFile(String& error) override;
    bool EndFile(String& error) override;

    void MakeNames(const std::vector<ColumnDefinition>& columns);

    // The members up to their values, ",\"id\":"; made once for all rows of a result set.
    std::vector<String> names_;
    std::uint64_t rows_in_file_ = 0;
};

}  // namespace DataConsumers
