#pragma once

#include <cstddef>
#include <memory>
#include <span>

#include "base/error_record.h"
#include "base/strings.h"
#include "files/encoding.h"
#include "files/text_encoder.h"
#include "platform/file_system.h"

// How the text of a file is written.
struct TextForm {
    FileEncoding encoding;
    Unmappable unmappable = Unmappable::Cut;
    bool marked =
        true;  // a new file begins with the byte-order mark of its encoding, if it has one
    // Appending: a file without a mark goes on in `encoding` instead of in Ansi, and one that holds
    // nothing, or a mark alone, is like a new one.
    bool keeps_encoding = false;
    // Appending: what goes behind a last line that has no end, LF or CR; empty: nothing does.
    String line_end = {};
};
// Opens a file for writing and creates it when missing. existed: whether it was there.
// append: its content is kept; otherwise it is emptied.
// Fails with "Could not open file for writing: " and the system's text; the code is kept.
std::unique_ptr<platform::OutputFile> OpenForWriting(ErrorRecord& error, const String& name,
                                                     bool append, bool& existed);
// Puts those words before the system's text.
void TellUnwritable(ErrorRecord& error);

// Writes text to a file in one of the encodings. Each piece reaches the file whole or not at all.
class TextWriter {
public:
    // Opens a file for writing, creates it when missing, and writes the byte-order mark of
    // its encoding where the form wants one.
    // append: go on at the end of an existing file, in the encoding that its own mark declares,
    //         whatever is asked for; see TextForm::keeps_encoding for a file without one. A mark
    //         that cannot be read counts as none, and a notice for standard output says
    //         "dFile::CheckUnicode could not read the file [%d].\n" with the system's code. A pipe,
    //         a FIFO or a device holds nothing to go on behind: it gets what a new file gets.
    // Fails with "Could not open file for writing: " and the system's text, the code is kept; as
    // MakeTextEncoder does, before any file is touched; and as Write does where a line end is due.
    bool Open(ErrorRecord& error, const String& name, const TextForm& form, bool append);
    // The same with a file that has been opened.
    // name: for messages. goes_on: it was there before and is appended to.
    bool Begin(ErrorRecord& error, const String& name, std::unique_ptr<platform::OutputFile> file,
               const TextForm& form, bool goes_on);
    bool IsOpen() const { return output_ != nullptr; }
    // What the text is written in: after an append, what the file's own mark declares.
    const FileEncoding& CurrentEncoding() const { return encoding_; }

    // Whether the file held nothing when it was opened; see TextForm::keeps_encoding.
    bool BeganEmpty() const { return began_empty_; }
    // Characters replaced since Open, see TextEncoder.
    std::uint64_t Replaced() const { return encoder_ ? encoder_->Replaced() : 0; }

    // Converts `text` and writes it in one call. written_size: bytes produced, also on failure of
    // the write itself.
    // Fails with "File is not opened yet.", as TextEncoder::Encode does, and as WriteBytes does.
    bool Write(ErrorRecord& error, StringView text, std::size_t* written_size = nullptr);

    // Writes bytes as they are.
    // Fails with "Could not write to file '%s': %s", the file's name and the system's text, when
    // not all reach the file; it is then cut back to the last whole write. The code is kept.
    bool WriteBytes(ErrorRecord& error, std::span<const std::byte> bytes);
    // True once bytes did not reach the file.
    bool Failed() const { return failed_; }

    // Hands on what the file has gathered; fails as WriteBytes does.
    bool Flush(ErrorRecord& error);
    // Closes the file, if one is open. Fails with the text of WriteBytes when the system tells only
    // now that data did not arrive.
    bool Finish(ErrorRecord& error);

private:
    bool MakeEncoder(ErrorRecord& error, const TextForm& form, const FileEncoding& encoding);
    Encoding OwnMark();
    bool GoBehind(ErrorRecord& error, const TextForm& form, std::uint64_t position);
    bool EndsWith(ErrorRecord& error, StringView text, std::uint64_t position, bool& ends);
    void WriteByteOrderMark();
    bool Fail(ErrorRecord& error);

    String name_;
    FileEncoding encoding_;
    bool failed_ = false;
    bool began_empty_ = true;
    std::unique_ptr<platform::OutputFile> output_;
    std::unique_ptr<TextEncoder> encoder_;
};
