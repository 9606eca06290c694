#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "base/strings.h"
#include "config/section_settings.h"
#include "core/row_set.h"
#include "core/type_table.h"

namespace DataTransformers {

// Changes the columns and the rows of a step between its source and its target.
class DataTransformer {
public:
    virtual ~DataTransformer() = default;

    // Makes and configures the transformer of the section's `Type`, any letter case. Fails with
    // "Transformer type '%s' is not supported yet", or as Configure does.
    static bool Create(String& error, const SectionSettings& settings,
                       std::unique_ptr<DataTransformer>& transformer);
    // The type words, in their order, with the keys of each.
    static std::vector<TypeEntry> Types();

    virtual bool Configure(String& error, const SectionSettings& settings) = 0;
    // Called once when the columns are known and there is no row yet, then for every row.
    virtual bool Transform(String& error, RowSet& rows) = 0;

    // The next call of Transform is that for the columns, of a further result set.
    void BeginResultSet() { columns_are_new_ = true; }
    // Fails where the result set has columns and lacks one that the transformer works on:
    // "There is no column %u; the result set has %u."
    bool CheckColumns(String& error, const RowSet& rows) const;

protected:
    // Notes a column that the transformer works on, by its position from 0.
    void NoteColumn(std::size_t position);
    // True in the call of Transform for the columns.
    bool TakeNewColumns() { return std::exchange(columns_are_new_, false); }

private:
    std::size_t columns_needed_ = 0;
    bool columns_are_new_ = true;
};

}  // namespace DataTransformers
