#pragma once

#include "transformers/data_transformer.h"

namespace DataTransformers {

// Gives a column another name.
class RenameColumn final : public DataTransformer {
public:
    static KeyList Keys();
    bool Configure(String& error, const SectionSettings& settings) override;
    bool Transform(String& error, RowSet& rows) override;

private:
    std::size_t position_ = 0;
    String new_name_;
};

}  // namespace DataTransformers
