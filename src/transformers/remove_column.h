#pragma once

#include <vector>

#include "transformers/data_transformer.h"

namespace DataTransformers {

// Takes columns out of the output. They stay in the row set, marked, so positions do not move.
class RemoveColumn final : public DataTransformer {
public:
    static KeyList Keys();
    bool Configure(String& error, const SectionSettings& settings) override;
    // The call for the columns marks them; every call marks their values.
    bool Transform(String& error, RowSet& rows) override;

private:
    std::vector<std::size_t> positions_;
};

}  // namespace DataTransformers
