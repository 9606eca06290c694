#pragma once

#include <cstddef>
#include <memory>
#include <span>

#include "base/error_record.h"
#include "base/strings.h"
#include "files/encoding.h"
#include "platform/file_system.h"

// Writes text to a file in one of the encodings. Each piece reaches the file whole or not at all.
class TextWriter {
public:
    // Opens a file for writing, creates it when missing, and writes the byte-order mark of
    // `encoding`.
    // append: go on at the end of an existing file, in the encoding that its own mark declares,
    //         whatever is asked for; a file without a mark is continued as Ansi. A mark that cannot
    //         be read counts as none, and a notice for standard output says
    //         "dFile::CheckUnicode could not read the file [%d].\n" with the system's code. A pipe,
    //         a FIFO or a device holds nothing to go on behind: it gets what a new file gets.
    // Fails with "Could not open file for writing: " and the system's text; the code is kept.
    // marked: whether a new file begins with the mark. Without it a file that has none, and is
    //         appended to, goes on in `encoding`.
    bool Open(ErrorRecord& error, const String& name, Encoding encoding, bool append,
              bool marked = true);
    bool IsOpen() const { return output_ != nullptr; }
    // Whether the file held nothing when it was opened.
    bool BeganEmpty() const { return began_empty_; }
    // What the text is written in: after an append, what the file's own mark declares.
    Encoding CurrentEncoding() const { return encoding_; }

    // Converts `text` and writes it in one call. written_size: bytes produced, also on failure of
    // the write itself.
    // Fails with "File is not opened yet.", with "Encoding is not supported yet" for UTF-16
    // big-endian, and as WriteBytes does.
    bool Write(ErrorRecord& error, StringView text, std::size_t* written_size = nullptr);

    // Writes bytes as they are.
    // Fails with "Could not write to file '%s': %s", the file's name and the system's text, when
    // not all reach the file; it is then cut back to the last whole write. The code is kept.
    bool WriteBytes(ErrorRecord& error, std::span<const std::byte> bytes);
    // True once bytes did not reach the file.
    bool Failed() const { return failed_; }

    // Closes the file, if one is open. Fails with the text of WriteBytes when the system tells only
    // now that data did not arrive.
    bool Finish(ErrorRecord& error);

private:
    void ContinueInOwnEncoding(Encoding unmarked);
    void WriteByteOrderMark();
    bool Fail(ErrorRecord& error);

    String name_;
    Encoding encoding_ = Encoding::Ansi;
    bool failed_ = false;
    bool began_empty_ = true;
    std::unique_ptr<platform::OutputFile> output_;
    PlainTextEncoder encoder_;
};
