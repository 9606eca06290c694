#include "transformers/rename_column.h"

#include "transformers/column_setting.h"

namespace DataTransformers {

bool RenameColumn::Configure(String& error, const SectionSettings& settings) {
    first_call_ = true;
    return ReadColumn(error, settings, kRenameColumn, position_) &&
           ReadRequired(error, settings, kRenameColumn, u"NewName", new_name_);
}

bool RenameColumn::Transform(String& /*error*/, RowSet& rows) {
    if (first_call_ && position_ < rows.Columns.size()) rows.Columns[position_].Name = new_name_;
    first_call_ = false;
    return true;
}

}  // namespace DataTransformers
