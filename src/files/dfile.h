#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "base/error_record.h"
#include "base/strings.h"
#include "files/encoding.h"
#include "files/line_reader.h"
#include "files/text_loader.h"
#include "files/text_writer.h"
#include "platform/file_system.h"

// The one place where the program's text becomes bytes in a file, and bytes become text: a writer,
// a line reader and whole-file loads under their published names. What they do stands with
// TextWriter, LineReader and the loaders of files/text_loader.h.
// Failures are told in the caller's ErrorRecord; nothing is thrown.
class dFile {
public:
    static constexpr std::size_t kReadBufferBytes = LineReader::kBufferBytes;

    // Before Open: written text is kept in MemoryText(), no file is touched.
    void SetMemoryMode(bool on) { memory_mode_ = on; }
    // Before OpenForReading: lines come from standard input.
    void SetConsoleInput(bool on) { console_input_ = on; }

    // Opens a file for writing, see TextWriter::Open.
    bool Open(ErrorRecord& error, const String& name, const TextForm& form, bool append);
    bool Open(ErrorRecord& error, const String& name, Encoding encoding, bool append) {
        return Open(error, name, TextForm{.encoding = {encoding}}, append);
    }
    // The same with a file that has been opened, see TextWriter::Begin. Not in memory mode.
    bool Begin(ErrorRecord& error, const String& name, std::unique_ptr<platform::OutputFile> file,
               const TextForm& form, bool goes_on) {
        return writer_.Begin(error, name, std::move(file), form, goes_on);
    }
    // TextWriter::Write, with one difference: when not all bytes reach the file there is no text,
    // and a notice on standard error tells the reason.
    bool Write(ErrorRecord& error, StringView text, std::size_t* written_size = nullptr);
    // Write for those who want to tell the reason; it is told nowhere else.
    bool Put(ErrorRecord& error, StringView text, std::size_t* written_size = nullptr);
    // Hands on what the file has gathered, see TextWriter::Flush.
    bool Flush(ErrorRecord& error) { return writer_.Flush(error); }
    // Writes bytes as they are. In memory mode they are taken as UTF-16 that ends at a zero unit.
    bool WriteBytes(std::span<const std::byte> bytes);
    // Releases file, stream and buffer. Always true; a notice on standard error tells of a file
    // whose last data did not arrive.
    bool Close();
    // Close for those who want to fail, see TextWriter::Finish; the reason is told nowhere else.
    bool Finish(ErrorRecord& error);

    const String& MemoryText() const { return memory_text_; }
    // The encoding of the file that is written.
    Encoding CurrentEncoding() const { return writer_.CurrentEncoding().form; }
    const TextWriter& Writer() const { return writer_; }

    // OpenByMark, except that an empty name opens nothing and succeeds with Ansi and no stream.
    static bool OpenFile(ErrorRecord& error, std::unique_ptr<platform::InputFile>& stream,
                         const String& name, Encoding& encoding);
    // Opens a file for ReadLine; after SetConsoleInput standard input, whatever the name.
    bool OpenForReading(ErrorRecord& error, const String& name);
    // See LineReader.
    bool ReadLine(String& line) { return reader_.ReadLine(line); }
    bool CanReopen() const { return reader_.CanReopen(); }
    bool ReadFailed() const { return reader_.Failed(); }

    // LoadWholeText, LoadTextLines and TakeLine.
    static bool PrepareLoadFileContent(ErrorRecord& error, const String& name, String& text,
                                       Encoding default_encoding);
    static bool LoadFileContent(ErrorRecord& error, const String& name, std::vector<String>& lines);
    static bool GetLine(const std::byte* ptr, std::size_t* idx, std::size_t size, String* line,
                        Encoding encoding, bool whole);

private:
    bool WriteToMemory(ErrorRecord& error, StringView text, std::size_t* written_size);

    bool console_input_ = false;
    bool memory_mode_ = false;
    bool memory_opened_ = false;
    TextForm memory_form_;
    String memory_text_;
    TextWriter writer_;
    LineReader reader_;
};
