#pragma once

#include "transformers/data_transformer.h"

namespace DataTransformers {

// Replaces a text in the values of one column or of all, letter for letter. NULL and removed values
// stay as they are.
class ReplaceString final : public DataTransformer {
public:
    static KeyList Keys();
    // In the search text "\r" and "\n" stand for a carriage return and a line feed; in the
    // replacement "\t" stands for a tab as well.
    bool Configure(String& error, const SectionSettings& settings) override;
    bool Transform(String& error, RowSet& rows) override;

private:
    void Replace(DataValue& value) const;

    bool all_columns_ = false;
    std::size_t position_ = 0;
    String from_;
    String to_;
};

}  // namespace DataTransformers
