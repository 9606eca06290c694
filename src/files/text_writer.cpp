#include "files/text_writer.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "base/notices.h"
#include "files/byte_order_mark.h"
#include "files/format.h"

std::unique_ptr<platform::OutputFile> OpenForWriting(ErrorRecord& error, const String& name,
                                                     bool append, bool& existed) {
    using Mode = platform::OutputFile::Mode;
    existed = platform::PathExists(name);
    const Mode existing_mode = append ? Mode::OpenExisting : Mode::Truncate;
    auto file = platform::OutputFile::Open(error, name, existed ? existing_mode : Mode::CreateNew);
    if (!file) TellUnwritable(error);
    return file;
}

void TellUnwritable(ErrorRecord& error) {
    error.text.insert(0, u"Could not open file for writing: ");
}

namespace {

bool FindEnd(ErrorRecord& error, platform::OutputFile& file, std::uint64_t& position) {
    if (file.SeekEnd(error, position)) return true;
    TellUnwritable(error);
    return false;
}

}  // namespace

bool TextWriter::Open(ErrorRecord& error, const String& name, const TextForm& form, bool append) {
    output_.reset();  // it may be the same file
    if (!KnowsEncoding(error, form.encoding)) return false;
    bool existed = false;
    auto file = OpenForWriting(error, name, append, existed);
    return file && Begin(error, name, std::move(file), form, append && existed);
}

bool TextWriter::Begin(ErrorRecord& error, const String& name,
                       std::unique_ptr<platform::OutputFile> file, const TextForm& form,
                       bool goes_on) {
    name_ = name;
    failed_ = false;
    if (!MakeEncoder(error, form, form.encoding)) return false;
    output_ = std::move(file);
    // What is no regular file has no content to go on behind, and no mark of its own.
    const bool behind_content = goes_on && output_->IsRegular();
    Encoding own = Encoding::Ansi;
    if (behind_content) {
        own = OwnMark();
        const bool keeps = own == Encoding::Ansi && form.keeps_encoding;
        if (!keeps && !MakeEncoder(error, form, {own})) return false;
    }
    std::uint64_t position = 0;
    if (behind_content && !FindEnd(error, *output_, position)) {
        output_.reset();
        return false;
    }
    const bool bare = form.keeps_encoding && position == ByteOrderMarkOf(own).size();
    began_empty_ = position == 0 || bare;
    if (position == 0 && form.marked) WriteByteOrderMark();
    if (began_empty_ || form.line_end.empty() || GoBehind(error, form, position)) return true;
    output_.reset();
    return false;
}

// What is added begins a line. position: the end of the file
bool TextWriter::GoBehind(ErrorRecord& error, const TextForm& form, std::uint64_t position) {
    bool ends = false;
    for (const StringView unit : {u"\n", u"\r"}) {
        if (!ends && !EndsWith(error, unit, position, ends)) return false;
    }
    return FindEnd(error, *output_, position) && (ends || Write(error, form.line_end));
}

bool TextWriter::EndsWith(ErrorRecord& error, StringView text, std::uint64_t position, bool& ends) {
    std::span<const std::byte> wanted;
    if (!encoder_->Encode(error, text, wanted)) return false;
    std::vector<std::byte> last(wanted.size());
    if (last.size() > position) return true;
    std::size_t count = 0;
    if (!output_->ReadAt(error, position - last.size(), last, count)) {
        TellUnwritable(error);
        return false;
    }
    ends = std::ranges::equal(last, wanted);
    return true;
}

bool TextWriter::MakeEncoder(ErrorRecord& error, const TextForm& form,
                             const FileEncoding& encoding) {
    encoding_ = encoding;
    encoder_ = MakeTextEncoder(error, encoding, form.unmappable);
    return encoder_ != nullptr;
}

// What the file's own mark declares; Ansi without one.
Encoding TextWriter::OwnMark() {
    std::array<std::byte, 3> start{};
    std::size_t count = 0;
    ErrorRecord failure;
    if (!output_->ReadAt(failure, 0, start, count)) {
        TellNotice(Format(u"dFile::CheckUnicode could not read the file [%d].\n", failure.code),
                   NoticeStream::Output);
    }
    return RecogniseByteOrderMark(std::span(start).first(count));
}

// A mark that cannot be written is no failure: the first text will meet the same trouble.
void TextWriter::WriteByteOrderMark() {
    ErrorRecord ignored;
    output_->Write(ignored, ByteOrderMarkOf(encoding_.form));
}

bool TextWriter::Write(ErrorRecord& error, StringView text, std::size_t* written_size) {
    if (!IsOpen()) {
        error.text = u"File is not opened yet.";
        return false;
    }
    std::span<const std::byte> bytes;
    if (!encoder_->Encode(error, text, bytes)) return false;
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

bool TextWriter::Flush(ErrorRecord& error) {
    return !output_ || output_->Flush(error) || Fail(error);
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
