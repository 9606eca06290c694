#include "transformers/data_transformer.h"

#include <algorithm>

#include "base/activity_trail.h"
#include "files/format.h"
#include "transformers/change_data_type.h"
#include "transformers/remove_column.h"
#include "transformers/rename_column.h"
#include "transformers/replace_string.h"

namespace DataTransformers {
namespace {

constexpr TypeWord<DataTransformer> kTypes[] = {
    RowOf<DataTransformer, RemoveColumn>(u"RemoveColumn"),
    RowOf<DataTransformer, RenameColumn>(u"RenameColumn"),
    RowOf<DataTransformer, ReplaceString>(u"ReplaceString"),
    RowOf<DataTransformer, ChangeDataType>(u"ChangeDataType"),
};

}  // namespace

std::vector<TypeEntry> DataTransformer::Types() { return EntriesOf(kTypes); }

bool DataTransformer::Create(String& error, const SectionSettings& settings,
                             std::unique_ptr<DataTransformer>& transformer) {
    const ScopedState state(u"DataTransformer::Create");
    const String word = settings.Text(kType);
    std::unique_ptr<DataTransformer> made = MakeByWord(kTypes, word);
    if (made) {
        transformer = std::move(made);
        return transformer->Configure(error, settings);
    }
    error = Format(u"Transformer type '%s' is not supported yet", word);
    return false;
}

// A file without any record has no columns that could be missed.
bool DataTransformer::CheckColumns(String& error, const RowSet& rows) const {
    const std::size_t count = rows.Columns.size();
    if (count == 0 || columns_needed_ <= count) return true;
    error = Format(u"There is no column %u; the result set has %u.", columns_needed_, count);
    return false;
}

void DataTransformer::NoteColumn(std::size_t position) {
    columns_needed_ = std::max(columns_needed_, position + 1);
}

}  // namespace DataTransformers
