#include "transformers/change_data_type.h"

#include <algorithm>
#include <iterator>

#include "files/text.h"
#include "transformers/column_setting.h"

namespace DataTransformers {
namespace {

constexpr StringView kUnquotedTypes[] = {u"integer", u"number", u"numeric", u"short"};

constexpr KeyTable kKeys({
    {.name = u"NewType", .meaning = u"the new name of the column's type", .needed = u"type"},
});
constexpr Key kNewType = kKeys[u"NewType"];

bool IsUnquoted(StringView type) {
    return std::any_of(std::begin(kUnquotedTypes), std::end(kUnquotedTypes),
                       [&](StringView word) { return text::EqualsIgnoringCase(type, word); });
}

}  // namespace

KeyList ChangeDataType::Keys() { return {kColumnKeys, kKeys}; }

bool ChangeDataType::Configure(String& error, const SectionSettings& settings) {
    if (!ReadColumn(error, settings, kChangeDataType, kApplyToColumn, position_)) return false;
    NoteColumn(position_);
    return ReadRequired(error, settings, kChangeDataType, kNewType, new_type_);
}

bool ChangeDataType::Transform(String& /*error*/, RowSet& rows) {
    if (!TakeNewColumns() || position_ >= rows.Columns.size()) return true;
    ColumnDefinition& column = rows.Columns[position_];
    column.LocalTypeName = new_type_;
    column.TypeName = new_type_;
    if (IsUnquoted(new_type_)) {
        column.LiteralPrefix.clear();
        column.LiteralSuffix.clear();
    }
    return true;
}

}  // namespace DataTransformers
