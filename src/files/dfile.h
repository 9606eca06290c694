// The one place where the program's text becomes bytes in a file, and bytes become text.
//
// Marks are byte-order marks (the Unicode standard, section 23.8). Failures are told in the
// caller's ErrorRecord; nothing is thrown.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "base/error_record.h"
#include "base/strings.h"
#include "files/encoding.h"
#include "platform/file_system.h"

// What LoadFileContent found besides the lines.
struct LoadReport {
    Encoding encoding = Encoding::Ansi;  // what the file's mark says
    std::uint64_t last_line = 0;         // line (from 1) up to which all is loaded
    std::uint64_t lines_left_out = 0;    // lines after it; 0 when only blank lines follow
};

class dFile {
public:
    // Chunks in which a file is streamed, and the most that a whole-file load takes.
    static constexpr std::size_t kReadBufferBytes = 16'777'216;

    // Before Open: written text is kept in MemoryText(), no file is touched.
    void SetMemoryMode(bool on) { memory_mode_ = on; }
    // Before OpenForReading: lines come from standard input.
    void SetConsoleInput(bool on) { console_input_ = on; }

    // Opens a file for writing, creates it when missing, and writes the mark of `encoding`.
    // append: go on at the end of an existing file, in the encoding that its own mark declares,
    //         whatever is asked for; a file without a mark is continued as Ansi. A mark that cannot
    //         be read counts as none, and standard output says
    //         "dFile::CheckUnicode could not read the file [%d].\n" with the system's code. A pipe,
    //         a FIFO or a device holds nothing to go on behind: it gets what a new file gets.
    // Fails with "Could not open file for writing: " and the system's text; the code is kept.
    bool Open(ErrorRecord& error, const String& name, Encoding encoding, bool append);

    // Converts `text` and writes it in one call. written_size: bytes produced, also on failure of
    // the write itself.
    // Fails with "File is not opened yet." before Open, with "Encoding is not supported yet" for
    // UTF-16 big-endian, and without a text when not all bytes reach the file: the file is then
    // cut back to the last whole write, and standard error tells the system's reason.
    bool Write(ErrorRecord& error, StringView text, std::size_t* written_size = nullptr);

    // Writes bytes as they are. In memory mode they are taken as UTF-16 that ends at a zero unit.
    bool WriteBytes(std::span<const std::byte> bytes);

    // Releases file, stream and buffer. Always true; standard error tells of a file whose last data
    // did not arrive.
    bool Close();
    // Close for those who want to fail: with "Could not write to file '%s': %s", which is then told
    // nowhere else.
    bool Finish(ErrorRecord& error);

    const String& MemoryText() const { return memory_text_; }
    // The encoding of the open file: after an append, what its own mark declares.
    Encoding CurrentEncoding() const { return encoding_; }

    // Opens a file as raw bytes and recognises its mark. A UTF-16 mark stays in the stream, a UTF-8
    // mark does not. An empty name opens nothing and succeeds with Ansi and no stream.
    // Fails with "Could not open file for reading: " and the system's text; the code is kept.
    static bool OpenFile(ErrorRecord& error, std::unique_ptr<platform::InputFile>& stream,
                         const String& name, Encoding& encoding);

    // OpenFile for ReadLine; after SetConsoleInput standard input, whatever the name.
    bool OpenForReading(ErrorRecord& error, const String& name);
    // True when what OpenForReading opened gives the same bytes if it is opened once more.
    bool CanReopen() const { return stream_ && !console_input_ && stream_->CanReopen(); }

    // The next line, without its line feed and carriage returns. UTF-16 little-endian files are
    // read in 16-bit units, all others one character a byte. False at the end.
    // A carriage return that ends the buffer stays in the line: it may be the last character of a
    // file without a final line feed.
    bool ReadLine(String& line);

    // True when reading ended because the system could not read on.
    bool ReadFailed() const { return stream_ && stream_->Failed(); }

    // Loads a file as one text, at most kReadBufferBytes of it. default_encoding: of a file without
    // a mark. After a UTF-8 mark the text begins with the mark's last byte (U+00BF), and so comes
    // out one character a byte; see DecodeAfterMark. mark: what the file's mark says.
    // The loaders fail as OpenFile does, and with "Could not read the file to its end.".
    static bool PrepareLoadFileContent(ErrorRecord& error, const String& name, String& text,
                                       Encoding default_encoding, Encoding* mark = nullptr);

    // Loads a file as one text, by its mark, which goes. A file without one is UTF-8, or where it
    // is not valid UTF-8 taken one character a byte.
    static bool LoadText(ErrorRecord& error, const String& name, String& text);

    // Loads a file as lines. The first line that comes out empty ends the list; see GetLine.
    static bool LoadFileContent(ErrorRecord& error, const String& name, std::vector<String>& lines,
                                LoadReport* report = nullptr);

    // Takes the line at `*idx` of the `size` bytes at `ptr`, or with `whole` all that is left, and
    // moves `*idx` past it. Carriage returns, line feeds and tabs are cut off the end, unless there
    // is nothing else. Invalid UTF-8 comes out one character a byte. False for an empty line.
    static bool GetLine(const std::byte* ptr, std::size_t* idx, std::size_t size, String* line,
                        Encoding encoding, bool whole);

    // Takes what the loaders leave of a UTF-8 mark off the start of a text, and decodes the text.
    static void DecodeAfterMark(String& text);

private:
    void ContinueInOwnEncoding();
    void WriteMark();
    bool WriteToMemory(StringView text);
    bool ReadConsoleLine(String& line);
    bool TakeBufferedLine(String& line);
    bool TakeBufferedWideLine(String& line);
    std::span<const unsigned char> Unread() const;

    bool opened_ = false;
    bool console_input_ = false;
    bool memory_mode_ = false;
    Encoding encoding_ = Encoding::Ansi;
    String memory_text_;

    String name_;
    std::unique_ptr<platform::OutputFile> output_;
    TextEncoder encoder_;

    std::unique_ptr<platform::InputFile> stream_;
    std::unique_ptr<std::byte[]> buffer_;
    std::size_t filled_ = 0;    // bytes in buffer_
    std::size_t position_ = 0;  // of the next byte to take
};
