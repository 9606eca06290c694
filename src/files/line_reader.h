#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "base/error_record.h"
#include "base/strings.h"
#include "files/encoding.h"
#include "files/raw_text.h"
#include "platform/file_system.h"

// Reads a file, or standard input, a line at a time. Memory does not grow with the file.
class LineReader {
public:
    // Chunks in which a file is read.
    static constexpr std::size_t kBufferBytes = 16'777'216;

    // Opens a file; an empty name opens nothing, succeeds, and gives no line.
    // Fails as OpenByMark does.
    bool Open(ErrorRecord& error, const String& name);
    // Lines come from standard input, or from a stream in its place, as they are typed or piped in.
    void OpenStandardInput(
        std::unique_ptr<platform::InputFile> stream = platform::InputFile::StandardInput());
    void Close();

    // The next line, without its line feed and carriage returns. UTF-16 little-endian files are
    // read in 16-bit units, their byte-order mark in front, all others one character a byte. False
    // at the end.
    // A carriage return that ends the buffer stays in the line: it may be the last character of a
    // file without a final line feed.
    bool ReadLine(String& line);

    // True when reading ended because the system could not read on.
    bool Failed() const { return stream_ && stream_->Failed(); }
    // True when what Open opened gives the same bytes if it is opened once more.
    bool CanReopen() const { return stream_ && !standard_input_ && stream_->CanReopen(); }
    // How much of the file has been read, where its length is known.
    std::optional<double> Share() const;

private:
    bool TakeLine(String& line);
    bool TakeWideLine(String& line);
    bool ReadInputLine(String& line);
    RawText Unread() const;

    std::unique_ptr<platform::InputFile> stream_;
    bool standard_input_ = false;
    Encoding encoding_ = Encoding::Ansi;
    std::unique_ptr<std::byte[]> buffer_;
    std::size_t filled_ = 0;    // bytes in buffer_
    std::size_t position_ = 0;  // of the next byte to take
    std::uint64_t passed_ = 0;  // bytes of the file before those in buffer_
    std::uint64_t size_ = 0;    // of the file; 0 where nobody knows
};
