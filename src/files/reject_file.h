#pragma once

#include <cstdint>

#include "base/strings.h"
#include "files/text_writer.h"

// Keeps the rows that a step sets aside, as CSV by RFC 4180: comma, CR LF, UTF-8 without a mark, a
// line of names first. The file is made with the first row, in place of one that is there.
//
//     line,reason,record
//     17,"3 fields where 4 columns are.","a,b,c"
class RejectFile {
public:
    // name: of the file; most: how many rows may be set aside.
    void Use(const String& name, std::uint64_t most);

    // Sets a record aside. line: where it began, or its number where there are no lines; from 1.
    // Fails with "More than %u rows were rejected; the last one: %s" and the reason of that row, or
    // with the message of the file layer. What was written before stays.
    bool Add(String& error, std::uint64_t line, StringView reason, StringView record);

    // Ends the file; false when its last data did not arrive.
    bool Close(String& error);

    std::uint64_t Count() const { return count_; }

private:
    bool Begin(String& error);

    String name_;
    std::uint64_t most_ = 0;
    std::uint64_t count_ = 0;
    TextWriter writer_;
    String line_;  // reused
};
