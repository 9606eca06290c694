#pragma once

#include <cstdint>
#include <vector>

#include "core/row_set.h"

namespace DataStorages {

// Describes the columns of a statement's current result set into `columns`, in place of what is
// there. Returns their number, 0 for a result without rows.
std::int16_t DescribeColumns(void* statement, std::vector<ColumnDefinition>& columns);

}  // namespace DataStorages
