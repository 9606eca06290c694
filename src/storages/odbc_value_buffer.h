#pragma once

#include <cstdint>
#include <memory>

#include "base/strings.h"

namespace DataStorages {

// The room into which a driver puts one value after the other, as UTF-16.
class ODBCValueBuffer {
public:
    enum class Outcome { Failed, Null, Text };

    explicit ODBCValueBuffer(std::int32_t bytes);

    // Reads a column, counted from 1, of the statement's current row. `text` points into this
    // buffer until the next value. Longer values are cut: one unit of the room ends the text.
    // room_bytes: how much of the buffer to use, at most what it was made with
    // Failed: the diagnostic is the statement's.
    Outcome Read(void* statement, std::uint16_t number, std::int32_t room_bytes, StringView& text);

private:
    std::unique_ptr<char16_t[]> units_;
};

}  // namespace DataStorages
