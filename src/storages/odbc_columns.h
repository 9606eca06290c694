#pragma once

#include <cstdint>
#include <vector>

#include "core/row_set.h"

namespace DataStorages {

struct DescribedResult {
    std::int16_t columns = 0;  // 0 for a result without rows
    bool told = true;          // the driver tells their number, names and types
};

// Describes the columns of a statement's current result set into `columns`, in place of what is
// there. What the driver does not tell is none, empty and 0.
DescribedResult DescribeColumns(void* statement, std::vector<ColumnDefinition>& columns);

}  // namespace DataStorages
