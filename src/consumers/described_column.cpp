#include "consumers/described_column.h"

#include <algorithm>
#include <limits>

#include "consumers/sql_statement.h"
#include "files/text.h"
#include "storages/column_default.h"

namespace sql {
namespace {

constexpr std::int32_t kNumberMost = std::numeric_limits<std::int32_t>::max();

std::int32_t NumberOf(StringView text) {
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(text::ToInteger(text), -1, kNumberMost));
}

}  // namespace

bool ReadDescribedColumn(String& error, const RowSet& rows, TableColumn& column) {
    const DataRow& row = rows.Row;
    if (row.size() <= kTypeName) return RefuseRow(error);
    ColumnDefinition& definition = column.Column;
    definition.Name = DescribedText(row, kColumn);
    definition.TypeName = DescribedText(row, kTypeName);
    definition.Length = NumberOf(DescribedText(row, kSize));
    const StringView digits = DescribedText(row, kDigits);
    definition.Digits = digits.empty() ? -1 : NumberOf(digits);
    definition.Nullable = DescribedText(row, kNullable) != u"0";

    const auto& told = rows.Described;
    if (told && told->TypeName == definition.TypeName) {
        definition.ConciseType = told->ConciseType;
        definition.OctetLength = told->OctetLength;
        definition.Unsized = told->Unsized;
    } else {
        definition.OctetLength = kNumberMost;  // whoever wrote a size means it
        if (definition.Length > 0 && digits.empty()) definition.Digits = 0;
    }
    const StringView spelling = DescribedText(row, kDefault);
    if (told && told->Default == spelling) {
        column.Default = told->DefaultValue;
    } else if (!spelling.empty()) {
        column.Default = DefaultValue(Dialect::ANSI, KindOf(definition), spelling);
    }
    return true;
}

}  // namespace sql
