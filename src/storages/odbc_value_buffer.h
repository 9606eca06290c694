#pragma once

#include <cstdint>
#include <memory>

#include "base/strings.h"

namespace DataStorages {

// The room into which a driver puts one value after the other, as UTF-16.
class ODBCValueBuffer {
public:
    enum class Outcome { Failed, Null, Text };

    // bytes: its room
    explicit ODBCValueBuffer(std::int32_t bytes);

    // Reads a column, counted from 1, of the statement's current row. `text` points into this
    // buffer until the next value. Longer values are cut: one unit of the room ends the text.
    // room_bytes: how much of the buffer to use, at most what it was made with
    // Failed: the diagnostic is the statement's.
    Outcome Read(void* statement, std::uint16_t number, std::int32_t room_bytes, StringView& text);
    // The same with the whole room, into a text of the caller's.
    Outcome ReadCut(void* statement, std::uint16_t number, String& text);
    // Reads a value to its end, piece by piece.
    Outcome ReadWhole(void* statement, std::uint16_t number, String& text);
    // The same of bytes, which come out as hexadecimal digits. Some drivers cut bytes that are read
    // as text at the first zero, others put marks around the digits.
    Outcome ReadBytes(void* statement, std::uint16_t number, String& digits);
    // Reads a bit that the driver hands over as the character of its number: "0" or "1".
    Outcome ReadBit(void* statement, std::uint16_t number, String& text);

    // Appends the bytes as two digits each, capitals (ODBC reference, "SQL to C: Binary").
    static void AppendDigits(String& digits, const void* bytes, std::size_t count);
    // Makes a digit of such a bit; a zero may have ended the text.
    static void ShowBit(String& text);

private:
    StringView Piece(std::int32_t room_bytes, std::int64_t indicator);

    const std::int32_t bytes_;
    std::unique_ptr<char16_t[]> units_;
};

}  // namespace DataStorages
