#include "transformers/change_data_type.h"

#include <algorithm>
#include <iterator>

#include "files/text.h"
#include "transformers/column_setting.h"

namespace DataTransformers {
namespace {

constexpr StringView kUnquotedTypes[] = {u"integer", u"number", u"numeric", u"short"};

bool IsUnquoted(StringView type) {
    return std::any_of(std::begin(kUnquotedTypes), std::end(kUnquotedTypes),
                       [&](StringView word) { return text::EqualsIgnoringCase(type, word); });
}

}  // namespace

bool ChangeDataType::Configure(String& error, const SectionSettings& settings) {
    first_call_ = true;
    return ReadColumn(error, settings, kChangeDataType, position_) &&
           ReadRequired(error, settings, kChangeDataType, u"NewType", new_type_);
}

bool ChangeDataType::Transform(String& /*error*/, RowSet& rows) {
    const bool applies = first_call_ && position_ < rows.Columns.size();
    first_call_ = false;
    if (!applies) return true;
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
