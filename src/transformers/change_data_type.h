#pragma once

#include "transformers/data_transformer.h"

namespace DataTransformers {

// Gives a column another type name. The types "integer", "number",
// "numeric" and "short", any letter case, take the quotes from its literals; others leave them. The
// type code and the values stay as they are.
class ChangeDataType final : public DataTransformer {
public:
    static KeyList Keys();
    bool Configure(String& error, const SectionSettings& settings) override;
    bool Transform(String& error, RowSet& rows) override;

private:
    std::size_t position_ = 0;
    String new_type_;
};

}  // namespace DataTransformers
