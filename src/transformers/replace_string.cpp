#include "transformers/replace_string.h"

#include "files/text.h"
#include "transformers/column_setting.h"

namespace DataTransformers {
namespace {

constexpr KeyTable kKeys({
    {.name = u"ApplyTo",
     .kind = KeyKind::Column,
     .words = u"*",
     .meaning = u"the column, counted from 1, or * for all",
     .needed = u"column"},
    {.name = u"From",
     .meaning = u"the text to look for; \\r and \\n stand for line ends",
     .needed = u"from"},
    {.name = u"To", .meaning = u"what takes its place; \\t stands for a tab, too"},
});
constexpr Key kApplyTo = kKeys[u"ApplyTo"];
constexpr Key kFrom = kKeys[u"From"];
constexpr Key kTo = kKeys[u"To"];

void ReplaceLineEndEscapes(String& value) {
    text::ReplaceAll(value, u"\\r", u"\r");
    text::ReplaceAll(value, u"\\n", u"\n");
}

}  // namespace

KeyList ReplaceString::Keys() { return {kKeys}; }

bool ReplaceString::Configure(String& error, const SectionSettings& settings) {
    all_columns_ = settings.Text(kApplyTo) == u"*";
    if (!all_columns_) {
        if (!ReadColumn(error, settings, kRenameColumn, kApplyTo, position_)) return false;
        NoteColumn(position_);
    }
    from_ = settings.Text(kFrom);
    if (from_.empty()) {
        error = u"Replace string transformer: 'From' parameter is required.";
        return false;
    }
    ReplaceLineEndEscapes(from_);
    to_ = settings.Text(kTo);
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
