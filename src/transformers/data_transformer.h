#pragma once

#include <memory>
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
};

}  // namespace DataTransformers
