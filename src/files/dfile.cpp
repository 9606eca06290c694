#include "files/dfile.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstring>

#include "base/activity_trail.h"
#include "base/notices.h"
#include "base/utf8.h"
#include "files/format.h"
#include "files/text.h"

namespace {

using Bytes = std::span<const unsigned char>;

constexpr std::array<std::byte, 2> kBigEndianMark{std::byte{0xFE}, std::byte{0xFF}};
constexpr std::array<std::byte, 2> kLittleEndianMark{std::byte{0xFF}, std::byte{0xFE}};
constexpr std::array<std::byte, 3> kUtf8Mark{std::byte{0xEF}, std::byte{0xBB}, std::byte{0xBF}};

// Two bytes of a mark are skipped by the whole-file loads, whatever its length.
constexpr std::size_t kSkippedMarkBytes = 2;

std::span<const std::byte> MarkOf(Encoding encoding) {
    switch (encoding) {
        case Encoding::Utf16BigEndian:
            return kBigEndianMark;
        case Encoding::Utf16LittleEndian:
            return kLittleEndianMark;
        case Encoding::Utf8:
            return kUtf8Mark;
        case Encoding::Ansi:
            break;
    }
    return {};
}

// The encoding whose mark begins `bytes`.
Encoding RecogniseMark(std::span<const std::byte> bytes) {
    for (const Encoding encoding :
         {Encoding::Utf16BigEndian, Encoding::Utf16LittleEndian, Encoding::Utf8}) {
        const std::span<const std::byte> mark = MarkOf(encoding);
        if (bytes.size() >= mark.size() && std::equal(mark.begin(), mark.end(), bytes.begin())) {
            return encoding;
        }
    }
    return Encoding::Ansi;
}

bool IsWide(Encoding encoding) {
    return encoding == Encoding::Utf16BigEndian || encoding == Encoding::Utf16LittleEndian;
}

const unsigned char* Find(Bytes bytes, unsigned char wanted) {
    if (bytes.empty()) return nullptr;  // memchr wants a real address
    return static_cast<const unsigned char*>(std::memchr(bytes.data(), wanted, bytes.size()));
}

// Appends each byte as the character of its value.
void AppendWidened(Bytes bytes, String& text) {
    const std::size_t start = text.size();
    text.resize(start + bytes.size());
    std::copy(bytes.begin(), bytes.end(), text.begin() + static_cast<std::ptrdiff_t>(start));
}

void AppendWithoutCarriageReturns(Bytes bytes, String& text) {
    while (const unsigned char* found = Find(bytes, '\r')) {
        const auto length = static_cast<std::size_t>(found - bytes.data());
        AppendWidened(bytes.first(length), text);
        bytes = bytes.subspan(length + 1);
    }
    AppendWidened(bytes, text);
}

// A little-endian 16-bit unit at the start of `bytes`; a single last byte is its low half.
char16_t TakeLittleEndian(Bytes bytes) {
    const unsigned high = bytes.size() > 1 ? bytes[1] : 0u;
    return static_cast<char16_t>(bytes[0] | (high << 8));
}

// The bytes of one line (or of all the rest) as GetLine cuts them, and where the next begins.
struct RawLine {
    Bytes bytes;
    std::size_t next;
};

RawLine CutNarrowLine(Bytes all, std::size_t start, bool whole) {
    const Bytes rest = all.subspan(start);
    const unsigned char* found = whole ? nullptr : Find(rest, '\n');
    if (found == nullptr) return {rest, all.size()};
    const auto length = static_cast<std::size_t>(found - rest.data());
    return {rest.first(length), start + length + 1};
}

void DecodeNarrow(Bytes bytes, Encoding encoding, String& line) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (encoding == Encoding::Utf8 && FromUtf8(text, line)) return;
    line = text::Widen(text);
}

// Takes the UTF-16 line at `position` and returns where the next begins.
std::size_t TakeWideLine(Bytes all, std::size_t position, bool little_endian, bool whole,
                         String& line) {
    line.clear();
    while (position < all.size()) {
        char16_t unit = TakeLittleEndian(all.subspan(position));
        if (!little_endian) unit = static_cast<char16_t>((unit << 8) | (unit >> 8));
        position = std::min(position + 2, all.size());
        if (unit == u'\n' && !whole) break;
        line.push_back(unit);
    }
    return position;
}

// A file's content as the whole-file loads take it.
struct Content {
    std::vector<std::byte> bytes;
    Encoding encoding = Encoding::Ansi;
    bool cut = false;                           // the file is longer than the limit
    std::unique_ptr<platform::InputFile> rest;  // what is unread of it
};

void SkipMark(platform::InputFile& stream, Encoding encoding) {
    if (encoding == Encoding::Utf8) {
        stream.PutBack(std::span(kUtf8Mark).subspan(kSkippedMarkBytes));
    } else if (encoding != Encoding::Ansi) {
        std::array<std::byte, kSkippedMarkBytes> mark{};
        stream.ReadFully(mark);
    }
}

constexpr StringView kCouldNotOpenForReading = u"Could not open file for reading: ";

std::unique_ptr<platform::InputFile> OpenStream(ErrorRecord& error, const String& name) {
    std::unique_ptr<platform::InputFile> stream = platform::InputFile::Open(error, name);
    if (!stream) error.text.insert(0, kCouldNotOpenForReading);
    return stream;
}

bool ReadContent(ErrorRecord& error, const String& name, Content& content) {
    if (!dFile::OpenFile(error, content.rest, name, content.encoding)) return false;
    // An empty name opens nothing; asked for directly, the system says what is wrong with it.
    if (!content.rest) content.rest = OpenStream(error, name);
    if (!content.rest) return false;
    // What has no length, a pipe say, is read up to the limit.
    const std::optional<std::uint64_t> size = content.rest->Size();
    if (size == 0) return true;
    std::size_t wanted = static_cast<std::size_t>(
        std::min<std::uint64_t>(size.value_or(dFile::kReadBufferBytes), dFile::kReadBufferBytes));
    if (content.encoding != Encoding::Ansi) wanted -= kSkippedMarkBytes;
    SkipMark(*content.rest, content.encoding);
    content.bytes.resize(wanted);
    content.bytes.resize(content.rest->ReadFully(content.bytes));
    if (content.rest->Failed()) {
        error.text = u"Could not read the file to its end.";
        return false;
    }
    content.cut = size.value_or(0) > dFile::kReadBufferBytes;
    return true;
}

// The line feeds in `bytes`, of which the first is at an even offset of its file.
std::uint64_t CountLineFeeds(std::span<const std::byte> bytes, Encoding encoding) {
    std::uint64_t count = 0;
    const std::size_t unit = IsWide(encoding) ? 2 : 1;
    const std::size_t low = encoding == Encoding::Utf16BigEndian ? 1 : 0;  // place of the low half
    for (std::size_t i = 0; i + unit <= bytes.size(); i += unit) {
        const bool is_line_feed = bytes[i + low] == std::byte{'\n'};
        if (is_line_feed && (unit == 1 || bytes[i + 1 - low] == std::byte{0})) ++count;
    }
    return count;
}

bool EndsWithLineFeed(std::span<const std::byte> bytes, Encoding encoding) {
    const std::size_t unit = IsWide(encoding) ? 2 : 1;
    return bytes.size() >= unit && CountLineFeeds(bytes.last(unit), encoding) == 1;
}

// Counts the lines that begin where the limit has cut the content; the line that it cut is one.
std::uint64_t CountLinesPastLimit(Content& content) {
    std::vector<std::byte> chunk(dFile::kReadBufferBytes);
    std::uint64_t line_feeds = 0;
    bool unfinished = false;
    while (const std::size_t filled = content.rest->ReadFully(chunk)) {
        const std::span<const std::byte> bytes = std::span(chunk).first(filled);
        line_feeds += CountLineFeeds(bytes, content.encoding);
        unfinished = !EndsWithLineFeed(bytes, content.encoding);
    }
    return line_feeds + (unfinished ? 1 : 0);
}

// Counts the lines that follow `position` in the content; 0 when all of them are blank.
std::uint64_t CountLinesAfter(const Content& content, std::size_t position) {
    std::uint64_t count = 0;
    bool blank = true;
    String line;
    while (position < content.bytes.size()) {
        dFile::GetLine(content.bytes.data(), &position, content.bytes.size(), &line,
                       content.encoding, false);
        blank = blank && text::Trim(line, text::kBlanksAndLineEnds).empty();
        ++count;
    }
    return blank ? 0 : count;
}

}  // namespace

// ---- Writing ----

bool dFile::Open(ErrorRecord& error, const String& name, Encoding encoding, bool append) {
    using Mode = platform::OutputFile::Mode;
    opened_ = false;
    encoding_ = encoding;
    if (memory_mode_) {
        memory_text_.clear();
        opened_ = true;
        return true;
    }
    output_.reset();  // it may be the same file
    const bool existed = platform::PathExists(name);
    const Mode existing_mode = append ? Mode::OpenExisting : Mode::Truncate;
    output_ = platform::OutputFile::Open(error, name, existed ? existing_mode : Mode::CreateNew);
    // What is no regular file has no content to go on behind, and no mark of its own.
    const bool behind_content = append && output_ && output_->IsRegular();
    if (behind_content && existed) ContinueInOwnEncoding();
    std::uint64_t position = 0;
    if (!output_ || (behind_content && !output_->SeekEnd(error, position))) {
        error.text.insert(0, u"Could not open file for writing: ");
        output_.reset();
        return false;
    }
    name_ = name;
    if (position == 0) WriteMark();
    opened_ = true;
    return true;
}

void dFile::ContinueInOwnEncoding() {
    std::array<std::byte, 3> start{};
    std::size_t count = 0;
    ErrorRecord failure;
    if (!output_->ReadStart(failure, start, count)) {
        TellNotice(Format(u"dFile::CheckUnicode could not read the file [%d].\n", failure.code),
                   NoticeStream::Output);
    }
    encoding_ = RecogniseMark(std::span(start).first(count));
}

// A mark that cannot be written is no failure: the first text will meet the same trouble.
void dFile::WriteMark() {
    ErrorRecord ignored;
    output_->Write(ignored, MarkOf(encoding_));
}

bool dFile::Write(ErrorRecord& error, StringView text, std::size_t* written_size) {
    if (!opened_) {
        error.text = u"File is not opened yet.";
        return false;
    }
    std::span<const std::byte> bytes;
    if (!encoder_.Encode(text, encoding_, bytes)) {
        error.text = u"Encoding is not supported yet";
        return false;
    }
    if (written_size != nullptr) *written_size = bytes.size();
    // Bytes of a narrow encoding cannot be told from UTF-16 once in memory: keep the text itself.
    if (memory_mode_ && encoding_ != Encoding::Utf16LittleEndian) return WriteToMemory(text);
    return WriteBytes(bytes);
}

bool dFile::WriteToMemory(StringView text) {
    memory_text_ += text;
    return true;
}

bool dFile::WriteBytes(std::span<const std::byte> bytes) {
    if (memory_mode_) {
        String text(bytes.size() / sizeof(char16_t), u'\0');
        std::memcpy(text.data(), bytes.data(), text.size() * sizeof(char16_t));
        return WriteToMemory(text.c_str());
    }
    ErrorRecord failure;
    if (output_ && output_->Write(failure, bytes)) return true;
    TellNotice(Format(u"Could not write to file '%s': %s\n", name_, failure.text));
    return false;
}

bool dFile::Close() {
    ErrorRecord failure;
    if (!Finish(failure)) TellNotice(failure.text + u'\n');
    return true;
}

bool dFile::Finish(ErrorRecord& error) {
    const std::unique_ptr<platform::OutputFile> output = std::move(output_);
    stream_.reset();
    buffer_.reset();
    filled_ = position_ = 0;
    opened_ = false;
    if (!output || output->Close(error)) return true;
    error.text = Format(u"Could not write to file '%s': %s", name_, error.text);
    return false;
}

// ---- Reading line by line ----

bool dFile::OpenFile(ErrorRecord& error, std::unique_ptr<platform::InputFile>& stream,
                     const String& name, Encoding& encoding) {
    const ScopedState state(u"dFile::OpenFile RB");
    encoding = Encoding::Ansi;
    stream.reset();
    if (name.empty()) return true;
    stream = OpenStream(error, name);
    if (!stream) return false;
    std::array<std::byte, 3> start{};
    const std::span<const std::byte> read = std::span(start).first(stream->ReadFully(start));
    encoding = RecogniseMark(read);
    if (encoding != Encoding::Utf8) stream->PutBack(read);
    return true;
}

bool dFile::OpenForReading(ErrorRecord& error, const String& name) {
    Close();
    if (!OpenFile(error, stream_, console_input_ ? String{} : name, encoding_)) return false;
    buffer_ = std::make_unique_for_overwrite<std::byte[]>(kReadBufferBytes);
    if (console_input_) {
        stream_ = platform::InputFile::StandardInput();
    } else if (stream_) {
        filled_ = stream_->ReadFully({buffer_.get(), kReadBufferBytes});
    }
    return true;
}

std::span<const unsigned char> dFile::Unread() const {
    return {reinterpret_cast<const unsigned char*>(buffer_.get()) + position_, filled_ - position_};
}

bool dFile::ReadLine(String& line) {
    line.clear();
    if (!stream_) return false;
    if (console_input_) return ReadConsoleLine(line);
    const bool wide = encoding_ == Encoding::Utf16LittleEndian;
    while (!(wide ? TakeBufferedWideLine(line) : TakeBufferedLine(line))) {
        if (filled_ < kReadBufferBytes) return !line.empty();
        filled_ = stream_->ReadFully({buffer_.get(), kReadBufferBytes});
        position_ = 0;
    }
    return true;
}

// Appends the buffered part of the line; true when its line feed was there.
bool dFile::TakeBufferedLine(String& line) {
    const Bytes unread = Unread();
    if (unread.empty()) return false;
    if (const unsigned char* found = Find(unread, '\n')) {
        const auto length = static_cast<std::size_t>(found - unread.data());
        AppendWithoutCarriageReturns(unread.first(length), line);
        position_ += length + 1;
        return true;
    }
    AppendWithoutCarriageReturns(unread.first(unread.size() - 1), line);
    AppendWidened(unread.last(1), line);
    position_ = filled_;
    return false;
}

bool dFile::TakeBufferedWideLine(String& line) {
    while (position_ < filled_) {
        const char16_t unit = TakeLittleEndian(Unread());
        position_ = std::min(position_ + 2, filled_);
        if (unit == u'\n') return true;
        if (unit != u'\r' || position_ == filled_) line.push_back(unit);
    }
    return false;
}

bool dFile::ReadConsoleLine(String& line) {
    for (;;) {
        if (position_ == filled_) {
            position_ = 0;
            filled_ = stream_->Read({buffer_.get(), kReadBufferBytes});
            if (filled_ == 0) {
                if (!stream_->Failed()) stream_.reset();  // a terminal would be read again
                return !line.empty();
            }
        }
        Bytes unread = Unread();
        const unsigned char* line_feed = Find(unread, '\n');
        if (line_feed != nullptr) {
            unread = unread.first(static_cast<std::size_t>(line_feed - unread.data()));
        }
        if (const unsigned char* zero = Find(unread, '\0')) {  // ends the input
            AppendWithoutCarriageReturns(
                unread.first(static_cast<std::size_t>(zero - unread.data())), line);
            Close();
            return !line.empty();
        }
        AppendWithoutCarriageReturns(unread, line);
        position_ += unread.size() + (line_feed != nullptr ? 1 : 0);
        if (line_feed != nullptr) return true;
    }
}

// ---- Loading whole files ----

bool dFile::GetLine(const std::byte* ptr, std::size_t* idx, std::size_t size, String* line,
                    Encoding encoding, bool whole) {
    assert(ptr && idx && line);
    const Bytes all(reinterpret_cast<const unsigned char*>(ptr), size);
    if (IsWide(encoding)) {
        *idx = TakeWideLine(all, *idx, encoding == Encoding::Utf16LittleEndian, whole, *line);
    } else {
        const RawLine raw = CutNarrowLine(all, *idx, whole);
        DecodeNarrow(raw.bytes, encoding, *line);
        *idx = raw.next;
    }
    const std::size_t last = line->find_last_not_of(u"\r\n\t");
    if (last != String::npos) line->resize(last + 1);
    return !line->empty();
}

bool dFile::PrepareLoadFileContent(ErrorRecord& error, const String& name, String& text,
                                   Encoding default_encoding, Encoding* mark) {
    const ScopedState state(u"dFile::PrepareLoadFileContent");
    text.clear();
    Content content;
    if (!ReadContent(error, name, content)) return false;
    if (mark != nullptr) *mark = content.encoding;
    if (content.bytes.empty()) return true;
    const Encoding encoding =
        content.encoding == Encoding::Ansi ? default_encoding : content.encoding;
    std::size_t position = 0;
    GetLine(content.bytes.data(), &position, content.bytes.size(), &text, encoding, true);
    return true;
}

bool dFile::LoadText(ErrorRecord& error, const String& name, String& text) {
    Encoding mark = Encoding::Ansi;
    if (!PrepareLoadFileContent(error, name, text, Encoding::Utf8, &mark)) return false;
    if (mark == Encoding::Utf8) DecodeAfterMark(text);
    return true;
}

bool dFile::LoadFileContent(ErrorRecord& error, const String& name, std::vector<String>& lines,
                            LoadReport* report) {
    const ScopedState state(u"dFile::LoadFileContent");
    lines.clear();
    Content content;
    if (!ReadContent(error, name, content)) return false;
    std::size_t position = 0;
    String line;
    bool ended = content.bytes.empty();
    while (!ended && position < content.bytes.size()) {
        ended = !GetLine(content.bytes.data(), &position, content.bytes.size(), &line,
                         content.encoding, false);
        if (!ended) lines.push_back(line);
    }
    if (report == nullptr) return true;
    report->encoding = content.encoding;
    report->last_line = lines.size() + (ended ? 1 : 0);
    report->lines_left_out = CountLinesAfter(content, position);
    if (!content.cut) return true;
    report->lines_left_out += CountLinesPastLimit(content);
    if (!ended && !EndsWithLineFeed(content.bytes, content.encoding))
        --report->last_line;  // the limit has cut this line
    return true;
}

void dFile::DecodeAfterMark(String& text) {
    constexpr char16_t kLastMarkByte = 0xBF;
    if (!text.starts_with(kLastMarkByte)) return;
    text.erase(0, 1);
    std::string bytes;
    for (const char16_t unit : text) bytes.push_back(static_cast<char>(unit));
    String decoded;
    if (FromUtf8(bytes, decoded)) text = decoded;
}
