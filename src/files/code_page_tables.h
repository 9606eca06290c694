// Code pages as tables, so that converting asks the system for nothing.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "base/error_record.h"
#include "files/encoding.h"
#include "platform/code_page.h"

// The code page of an encoding that is one. Fails, with null, with
// "Encoding %s is not known on this system.".
std::unique_ptr<platform::CodePage> OpenCodePage(ErrorRecord& error, const FileEncoding& encoding);

// What bytes stand for.
class CodePageDecodingTable {
public:
    static constexpr char16_t kNothing = 0xFFFF;
    static constexpr char16_t kLead = 0xFFFE;

    explicit CodePageDecodingTable(platform::CodePage& page);

    // The character of a byte, or kLead, or kNothing.
    char16_t Of(unsigned char byte) const { return single_[byte]; }
    // The character of two bytes, of which the first is a lead; or kNothing.
    char16_t Of(unsigned char lead, unsigned char trail) const {
        return pairs_[row_of_[lead]][trail];
    }
    // Whether the bytes below 0x80 are the ASCII characters.
    bool HoldsAscii() const { return holds_ascii_; }

private:
    using Row = std::array<char16_t, 256>;

    Row single_{};
    std::array<std::uint8_t, 256> row_of_{};  // of lead bytes
    std::vector<Row> pairs_;
    bool holds_ascii_ = true;
};

// The bytes of characters, first to last from the lowest byte of an entry up, their count in the
// highest. An entry of 0 is a character that the code page lacks.
class CodePageEncodingTable {
public:
    static constexpr int kCountShift = 24;

    explicit CodePageEncodingTable(platform::CodePage& page);

    std::uint32_t Of(char16_t unit) const { return rows_[row_of_[unit >> 8]][unit & 0xFF]; }
    bool HoldsAscii() const { return holds_ascii_; }

private:
    using Row = std::array<std::uint32_t, 256>;

    std::array<std::uint8_t, 256> row_of_{};
    std::vector<Row> rows_;  // the first is empty, for all units that the code page lacks
    bool holds_ascii_ = true;
};
