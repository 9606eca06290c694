#include "transformers/replace_string.h"

#include "files/text.h"
#include "transformers/column_setting.h"

namespace DataTransformers {
namespace {

void ReplaceLineEndEscapes(String& value) {
    text::ReplaceAll(value, u"\\r", u"\r");
    text::ReplaceAll(value, u"\\n", u"\n");
}

}  // namespace

bool ReplaceString::Configure(String& error, const SectionSettings& settings) {
    all_columns_ = settings.Text(u"ApplyTo") == u"*";
    if (!all_columns_ && !ReadColumn(error, settings, kRenameColumn, position_)) return false;
    from_ = settings.Text(u"From");
    if (from_.empty()) {
        error = u"Replace string transformer: 'From' parameter is required.";
        return false;
    }
    ReplaceLineEndEscapes(from_);
    to_ = settings.Text(u"To");
    ReplaceLineEndEscapes(to_);
    text::ReplaceAll(to_, u"\\t", u"\t");
    return true;
}

bool ReplaceString::Transform(String& /*error*/, RowSet& rows) {
    if (all_columns_) {
        for (DataValue& value : rows.Row) Replace(value);
    } else if (position_ < rows.Row.size()) {
        Replace(rows.Row[position_]);
    }
    return true;
}

void ReplaceString::Replace(DataValue& value) const {
    if (value.Included && !value.IsNull) text::ReplaceAll(value.Text, from_, to_);
}

}  // namespace DataTransformers
