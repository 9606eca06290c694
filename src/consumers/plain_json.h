#pragma once

#include <cstdint>
#include <vector>

#include "consumers/document_form.h"

namespace DataConsumers {

// The rows as an array of objects, in the manner of RFC 8259:
//
//     [ {"id":12,"path":"a\/b","note":null },
//      {"id":13,"path":"","note":"x" }]
//
// Texts that look like a number or null are written without quotes, names too, and control
// characters other than CR, LF and tab as they are, so not everything is strict JSON.
class PlainJson final : public DocumentForm {
public:
    PlainJson()
        : DocumentForm({.ends_each_file = false, .counts_start = false, .counts_end = false}) {}

    void BeginFile(String& out) override;
    bool BeginTable(String& error, const RowSet& rows, String& out) override;
    bool BeginRows(String& error, const RowSet& rows, String& out) override;
    // "JSONFile: Broken row structure [Values: %d, Structure: %d for '%s']"
    bool AppendRow(String& error, const RowSet& rows, String& out) override;
    bool EndFile(String& error, String& out) override;

private:
    void MakeNames(const std::vector<ColumnDefinition>& columns);

    // The members up to their values, ",\"id\":"; made once for all rows of a result set.
    std::vector<String> names_;
    std::uint64_t rows_in_file_ = 0;
};

}  // namespace DataConsumers
