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
    if (!ReadColumn(error, settings, kRenameColumn, kApplyToColumn, position_)) return false;
    NoteColumn(position_);
    return ReadRequired(error, settings, kRenameColumn, kNewName, new_name_);
}

bool RenameColumn::Transform(String& /*error*/, RowSet& rows) {
    if (TakeNewColumns() && position_ < rows.Columns.size()) {
        rows.Columns[position_].Name = new_name_;
    }
    return true;
}

}  // namespace DataTransformers
