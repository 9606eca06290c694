#include "files/dfile.h"

#include <cassert>
#include <cstring>

#include "base/notices.h"
#include "files/byte_order_mark.h"

bool dFile::Open(ErrorRecord& error, const String& name, const TextForm& form, bool append) {
    if (!memory_mode_) return writer_.Open(error, name, form, append);
    memory_form_ = form;
    memory_text_.clear();
    memory_opened_ = true;
    return true;
}

bool dFile::Put(ErrorRecord& error, StringView text, std::size_t* written_size) {
    if (memory_mode_ && memory_opened_) return WriteToMemory(error, text, written_size);
    return writer_.Write(error, text, written_size);
}

bool dFile::Write(ErrorRecord& error, StringView text, std::size_t* written_size) {
    ErrorRecord failure;
    if (Put(failure, text, written_size)) return true;
    if (writer_.Failed()) {
        TellNotice(failure.text + u'\n');
    } else {
        error.text = failure.text;
    }
    return false;
}

// Bytes of a narrow encoding could not be told from UTF-16 once in memory: the text itself is kept.
bool dFile::WriteToMemory(ErrorRecord& error, StringView text, std::size_t* written_size) {
    const std::unique_ptr<TextEncoder> encoder =
        MakeTextEncoder(error, memory_form_.encoding, memory_form_.unmappable);
    std::span<const std::byte> bytes;
    if (!encoder || !encoder->Encode(error, text, bytes)) return false;
    if (written_size != nullptr) *written_size = bytes.size();
    const bool wide = memory_form_.encoding.form == Encoding::Utf16LittleEndian;
    if (wide) return WriteBytes(bytes);
    memory_text_ += text;
    return true;
}

bool dFile::WriteBytes(std::span<const std::byte> bytes) {
    if (memory_mode_) {
        String text(bytes.size() / sizeof(char16_t), u'\0');
        std::memcpy(text.data(), bytes.data(), text.size() * sizeof(char16_t));
        memory_text_ += text.c_str();
        return true;
    }
    ErrorRecord failure;
    if (writer_.WriteBytes(failure, bytes)) return true;
    TellNotice(failure.text + u'\n');
    return false;
}

bool dFile::Close() {
    ErrorRecord failure;
    if (!Finish(failure)) TellNotice(failure.text + u'\n');
    return true;
}

bool dFile::Finish(ErrorRecord& error) {
    memory_opened_ = false;
    reader_.Close();
    return writer_.Finish(error);
}

bool dFile::OpenFile(ErrorRecord& error, std::unique_ptr<platform::InputFile>& stream,
                     const String& name, Encoding& encoding) {
    encoding = Encoding::Ansi;
    stream.reset();
    if (name.empty()) return true;
    stream = OpenByMark(error, name, encoding);
    return stream != nullptr;
}

bool dFile::OpenForReading(ErrorRecord& error, const String& name) {
    Close();
    if (!console_input_) return reader_.Open(error, name);
    reader_.OpenStandardInput();
    return true;
}

bool dFile::PrepareLoadFileContent(ErrorRecord& error, const String& name, String& text,
                                   Encoding default_encoding) {
    return LoadWholeText(error, name, text, default_encoding);
}

bool dFile::LoadFileContent(ErrorRecord& error, const String& name, std::vector<String>& lines) {
    return LoadTextLines(error, name, lines);
}

bool dFile::GetLine(const std::byte* ptr, std::size_t* idx, std::size_t size, String* line,
                    Encoding encoding, bool whole) {
    assert(ptr && idx && line);
    return TakeLine({ptr, size}, *idx, *line, encoding, whole);
}
