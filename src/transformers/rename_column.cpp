#include "transformers/rename_column.h"

#include "transformers/column_setting.h"

namespace DataTransformers {
namespace {

constexpr KeyTable kKeys({
    {.name = u"NewName", .meaning = u"the new name of the column", .needed = u"name"},
});
constexpr Key kNewName = kKeys[u"NewName"];

}  // namespace

KeyList RenameColumn::Keys() { return {kColumnKeys, kKeys}; }

bool RenameColumn::Configure(String& error, const SectionSettings& settings) {
    first_call_ = true;
    return ReadColumn(error, settings, kRenameColumn, kApplyToColumn, position_) &&
           ReadRequired(error, settings, kRenameColumn, kNewName, new_name_);
}

bool RenameColumn::Transform(String& /*error*/, RowSet& rows) {
    if (first_call_ && position_ < rows.Columns.size()) rows.Columns[position_].Name = new_name_;
    first_call_ = false;
    return true;
}

}  // namespace DataTransformers
