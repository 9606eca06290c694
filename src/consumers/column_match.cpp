#include "consumers/column_match.h"

#include <algorithm>

#include "files/format.h"
#include "files/text.h"

namespace DataConsumers {
namespace {

using Columns = std::vector<ColumnDefinition>;

const ColumnDefinition* FindColumn(String& error, StringView table, StringView name,
                                   const Columns& columns) {
    const auto exact = std::find_if(columns.begin(), columns.end(),
                                    [&](const auto& column) { return column.Name == name; });
    if (exact != columns.end()) return &*exact;
    const auto is_like = [&](const ColumnDefinition& column) {
        return text::EqualsIgnoringCase(column.Name, name);
    };
    const auto like = std::find_if(columns.begin(), columns.end(), is_like);
    if (like == columns.end()) {
        error = Format(u"Table %s has no column '%s'.", table, name);
        return nullptr;
    }
    if (std::find_if(like + 1, columns.end(), is_like) == columns.end()) return &*like;
    error =
        Format(u"Table %s has several columns that are '%s' but for the letter case.", table, name);
    return nullptr;
}

}  // namespace

bool MatchColumns(String& error, StringView table, const Columns& rows, const Columns& of_table,
                  Columns& matched) {
    std::vector<const ColumnDefinition*> found;
    for (const ColumnDefinition& column : rows) {
        if (!column.Included) continue;
        const ColumnDefinition* const match = FindColumn(error, table, column.Name, of_table);
        if (match == nullptr) return false;
        if (std::find(found.begin(), found.end(), match) != found.end()) {
            error = Format(u"Two columns go to column '%s' of table %s.", match->Name, table);
            return false;
        }
        found.push_back(match);
    }
    matched.clear();
    for (const ColumnDefinition* const match : found) matched.push_back(*match);
    return true;
}

}  // namespace DataConsumers
