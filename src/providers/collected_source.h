#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "providers/data_provider.h"

namespace DataProviders {

// A source that has all its rows in memory once it is open, and hands them out one by one.
class CollectedSource : public DataProvider {
public:
    bool Fetch(String& error, RowSet& rows, bool track_widths) override;

protected:
    using Values = std::vector<String>;

    void Clear();
    void Add(Values values) { collected_.push_back(std::move(values)); }

private:
    std::vector<Values> collected_;
    std::size_t next_ = 0;
};

// Describes a column of texts of up to `length` characters.
ColumnDefinition TextColumn(const char16_t* name, std::int32_t length);

}  // namespace DataProviders
