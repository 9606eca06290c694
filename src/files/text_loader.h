// Loads whole files, up to a limit, by their byte-order mark.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "base/error_record.h"
#include "base/strings.h"
#include "files/byte_order_mark.h"
#include "files/encoding.h"

// The most that is loaded of a file, its mark included. What follows is left out.
constexpr std::size_t kLoadLimitBytes = 16'777'216;

// What LoadTextLines found besides the lines.
struct LoadReport {
    Encoding encoding = Encoding::Ansi;  // what the file's mark says
    std::uint64_t last_line = 0;         // line (from 1) up to which all is loaded
    std::uint64_t lines_left_out = 0;    // lines after it; 0 when only blank lines follow
};

// Loads a file as one text. default_encoding: of a file without a mark. After a UTF-8 mark the text
// begins with the mark's last byte (U+00BF), which is no UTF-8, and so comes out one character a
// byte.
// The loaders fail as OpenByMark does, and with "Could not read the file to its end.".
bool LoadWholeText(ErrorRecord& error, const String& name, String& text, Encoding default_encoding,
                   const FileOpener& open = platform::InputFile::Open);

// Loads a file as lines, one character a byte without a mark. The first line that comes out empty
// ends the list; see TakeLine.
bool LoadTextLines(ErrorRecord& error, const String& name, std::vector<String>& lines,
                   LoadReport* report = nullptr,
                   const FileOpener& open = platform::InputFile::Open);

// Takes the line at `position` of the bytes, or with `whole` all that is left, and moves `position`
// past it. Carriage returns, line feeds and tabs are cut off the end, unless there is nothing else.
// Invalid UTF-8 comes out one character a byte. False for an empty line.
bool TakeLine(std::span<const std::byte> bytes, std::size_t& position, String& line,
              Encoding encoding, bool whole);

// Takes what the loaders leave of a UTF-8 mark off the start of a text, and decodes the text.
void DecodeAfterByteOrderMark(String& text);
