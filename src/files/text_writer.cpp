#include "files/text_writer.h"

#include <array>
#include <utility>

#include "base/notices.h"
#include "files/byte_order_mark.h"
#include "files/format.h"

bool TextWriter::Open(ErrorRecord& error, const String& name, Encoding encoding, bool append,
                      bool marked) {
    using Mode = platform::OutputFile::Mode;
    name_ = name;
    encoding_ = encoding;
    failed_ = false;
    output_.reset();  // it may be the same file
    const bool existed = platform::PathExists(name);
    const Mode existing_mode = append ? Mode::OpenExisting : Mode::Truncate;
    output_ = platform::OutputFile::Open(error, name, existed ? existing_mode : Mode::CreateNew);
    // What is no regular file has no content to go on behind, and no mark of its own.
    const bool behind_content = append && output_ && output_->IsRegular();
    if (behind_content && existed) ContinueInOwnEncoding(marked ? Encoding::Ansi : encoding);
    std::uint64_t position = 0;
    if (!output_ || (behind_content && !output_->SeekEnd(error, position))) {
        error.text.insert(0, u"Could not open file for writing: ");
        output_.reset();
        return false;
    }
    began_empty_ = position == 0;
    if (began_empty_ && marked) WriteByteOrderMark();
    return true;
}

void TextWriter::ContinueInOwnEncoding(Encoding unmarked) {
    std::array<std::byte, 3> start{};
    std::size_t count = 0;
    ErrorRecord failure;
    if (!output_->ReadStart(failure, start, count)) {
        TellNotice(Format(u"dFile::CheckUnicode could not read the file [%d].\n", failure.code),
                   NoticeStream::Output);
    }
    encoding_ = RecogniseByteOrderMark(std::span(start).first(count));
    if (encoding_ == Encoding::Ansi) encoding_ = unmarked;
}

// A mark that cannot be written is no failure: the first text will meet the same trouble.
void TextWriter::WriteByteOrderMark() {
    ErrorRecord ignored;
    output_->Write(ignored, ByteOrderMarkOf(encoding_));
}

bool TextWriter::Write(ErrorRecord& error, StringView text, std::size_t* written_size) {
    if (!IsOpen()) {
        error.text = u"File is not opened yet.";
        return false;
    }
    std::span<const std::byte> bytes;
    if (!encoder_.Encode(text, encoding_, bytes)) {
        error.text = kEncodingNotSupported;
        return false;
    }
    if (written_size != nullptr) *written_size = bytes.size();
    return WriteBytes(error, bytes);
}

bool TextWriter::WriteBytes(ErrorRecord& error, std::span<const std::byte> bytes) {
    if (!IsOpen()) {
        error.text = u"File is not opened yet.";
        return false;
    }
    return output_->Write(error, bytes) || Fail(error);
}

bool TextWriter::Finish(ErrorRecord& error) {
    const std::unique_ptr<platform::OutputFile> output = std::move(output_);
    return !output || output->Close(error) || Fail(error);
}

// error: the system's text.
bool TextWriter::Fail(ErrorRecord& error) {
    failed_ = true;
    error.text = Format(u"Could not write to file '%s': %s", name_, error.text);
    return false;
}
