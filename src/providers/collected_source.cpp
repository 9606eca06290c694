#include "providers/collected_source.h"

#include <algorithm>

#include "core/sql_types.h"

namespace DataProviders {

void CollectedSource::Clear() {
    collected_.clear();
    next_ = 0;
}

bool CollectedSource::Fetch(String& /*error*/, RowSet& rows, bool track_widths) {
    if (next_ == collected_.size()) return false;
    const Values& values = collected_[next_++];
    rows.GrowRow(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        rows.Row[i].Text = values[i];
        rows.Row[i].IsNull = false;
        if (!track_widths || i >= rows.Columns.size()) continue;
        ColumnDefinition& column = rows.Columns[i];
        column.RaiseMaxWidth(std::max(values[i].size(), column.Name.size()));
    }
    return true;
}

ColumnDefinition TextColumn(const char16_t* name, std::int32_t length) {
    return {name, kSqlVarchar, u"varchar", length};
}

}  // namespace DataProviders
