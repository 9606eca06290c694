#include "transformers/remove_column.h"

#include "files/line_splitter.h"
#include "transformers/column_setting.h"

namespace DataTransformers {
namespace {

constexpr KeyTable kKeys({
    {.name = u"ApplyTo",
     .kind = KeyKind::Columns,
     .meaning = u"the columns, counted from 1, with commas between them",
     .needed = u"column"},
});
constexpr Key kApplyTo = kKeys[u"ApplyTo"];

}  // namespace

KeyList RemoveColumn::Keys() { return {kKeys}; }

bool RemoveColumn::Configure(String& error, const SectionSettings& settings) {
    String list;
    if (!ReadRequired(error, settings, kRemoveColumn, kApplyTo, list)) return false;
    std::vector<StringView> numbers;
    SplitLine(list, u',', {}, OuterQuotes::Keep, numbers);
    for (const StringView number : numbers) {
        std::size_t position = 0;
        if (!ReadColumnNumber(error, kRemoveColumn, number, position)) return false;
        positions_.push_back(position);
        NoteColumn(position);
    }
    return true;
}

bool RemoveColumn::Transform(String& /*error*/, RowSet& rows) {
    const bool columns = TakeNewColumns();
    for (const std::size_t position : positions_) {
        if (columns) {
            rows.Exclude(position);
        } else if (position < rows.Row.size()) {
            rows.Row[position].Included = false;
        }
    }
    return true;
}

}  // namespace DataTransformers
