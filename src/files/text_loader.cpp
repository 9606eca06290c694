#include "files/text_loader.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>

#include "base/activity_trail.h"
#include "base/utf8.h"
#include "files/byte_order_mark.h"
#include "files/raw_text.h"
#include "files/text.h"

namespace {

// Two bytes of a mark are skipped, whatever its length: the third of a UTF-8 mark is content.
constexpr std::size_t kSkippedMarkBytes = 2;

// A file's content as far as it is loaded.
struct Content {
    std::vector<std::byte> bytes;
    Encoding encoding = Encoding::Ansi;
    bool cut = false;                           // the file is longer than the limit
    std::unique_ptr<platform::InputFile> rest;  // what is unread of it
};

void SkipByteOrderMark(platform::InputFile& stream, Encoding encoding) {
    if (encoding == Encoding::Utf8) {
        stream.PutBack(ByteOrderMarkOf(encoding).subspan(kSkippedMarkBytes));
    } else if (encoding != Encoding::Ansi) {
        std::array<std::byte, kSkippedMarkBytes> skipped{};
        stream.ReadFully(skipped);
    }
}

bool ReadContent(ErrorRecord& error, const String& name, const FileOpener& open, Content& content) {
    content.rest = OpenByMark(error, name, content.encoding, open);
    if (!content.rest) return false;
    // What has no length, a pipe say, is read up to the limit.
    const std::optional<std::uint64_t> size = content.rest->Size();
    if (size == 0) return true;
    std::size_t wanted = static_cast<std::size_t>(
        std::min<std::uint64_t>(size.value_or(kLoadLimitBytes), kLoadLimitBytes));
    if (content.encoding != Encoding::Ansi) wanted -= kSkippedMarkBytes;
    SkipByteOrderMark(*content.rest, content.encoding);
    content.bytes.resize(wanted);
    content.bytes.resize(content.rest->ReadFully(content.bytes));
    if (content.rest->Failed()) {
        error.text = u"Could not read the file to its end.";
        return false;
    }
    content.cut = size.value_or(0) > kLoadLimitBytes;
    return true;
}

// The bytes of one line, or of all the rest, and where the next begins.
struct RawLine {
    RawText bytes;
    std::size_t next;
};

RawLine CutNarrowLine(RawText all, std::size_t start, bool whole) {
    const RawText rest = all.subspan(start);
    const unsigned char* found = whole ? nullptr : FindByte(rest, '\n');
    if (found == nullptr) return {rest, all.size()};
    const auto length = static_cast<std::size_t>(found - rest.data());
    return {rest.first(length), start + length + 1};
}

void DecodeNarrow(RawText bytes, Encoding encoding, String& line) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (encoding == Encoding::Utf8 && FromUtf8(text, line)) return;
    line = text::Widen(text);
}

// Takes the UTF-16 line at `position` and returns where the next begins.
std::size_t TakeWideLine(RawText all, std::size_t position, bool little_endian, bool whole,
                         String& line) {
    line.clear();
    while (position < all.size()) {
        const char16_t unit = UnitAtStart(all.subspan(position), little_endian);
        position = std::min(position + 2, all.size());
        if (unit == u'\n' && !whole) break;
        line.push_back(unit);
    }
    return position;
}

// The line feeds in `bytes`, of which the first is at an even offset of its file. The limit and its
// chunks are even, so no unit of two bytes lies across an end; an odd last byte is no line feed.
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

// Counts the lines that end past the limit, that which the limit cut in two among them.
std::uint64_t CountLinesPastLimit(Content& content) {
    std::vector<std::byte> chunk(kLoadLimitBytes);
    std::uint64_t line_feeds = 0;
    bool unfinished = false;  // a last line without a line feed is a line as well
    while (const std::size_t filled = content.rest->ReadFully(chunk)) {
        const std::span<const std::byte> bytes = std::span(chunk).first(filled);
        line_feeds += CountLineFeeds(bytes, content.encoding);
        unfinished = !EndsWithLineFeed(bytes, content.encoding);
    }
    return line_feeds + (unfinished ? 1 : 0);
}

// Counts the lines that follow `position` in the content. 0 when all of them are blank: nobody
// misses the blank lines at the end of a file.
std::uint64_t CountLinesAfter(const Content& content, std::size_t position) {
    std::uint64_t count = 0;
    bool blank = true;
    String line;
    while (position < content.bytes.size()) {
        TakeLine(content.bytes, position, line, content.encoding, false);
        blank = blank && text::Trim(line, text::kBlanksAndLineEnds).empty();
        ++count;
    }
    return blank ? 0 : count;
}

// ended: at the empty line behind `loaded` lines; `position` is behind the last line taken.
LoadReport ReportOf(Content& content, std::size_t position, std::size_t loaded, bool ended) {
    LoadReport report;
    report.encoding = content.encoding;
    // Nothing of the empty line that ended the list is lost, so it counts as loaded.
    report.last_line = loaded + (ended ? 1 : 0);
    report.lines_left_out = CountLinesAfter(content, position);
    if (!content.cut) return report;
    // The limit may cut a line in two. CountLinesPastLimit counts it, so its first half is neither
    // one that is left out as well nor the last that is loaded whole.
    if (!EndsWithLineFeed(content.bytes, content.encoding)) {
        if (report.lines_left_out != 0) --report.lines_left_out;
        if (!ended) --report.last_line;
    }
    report.lines_left_out += CountLinesPastLimit(content);
    return report;
}

}  // namespace

bool TakeLine(std::span<const std::byte> bytes, std::size_t& position, String& line,
              Encoding encoding, bool whole) {
    const RawText all = AsRawText(bytes);
    if (IsWide(encoding)) {
        const bool little_endian = encoding == Encoding::Utf16LittleEndian;
        position = TakeWideLine(all, position, little_endian, whole, line);
    } else {
        const RawLine raw = CutNarrowLine(all, position, whole);
        DecodeNarrow(raw.bytes, encoding, line);
        position = raw.next;
    }
    // A line of nothing else stays: with CR LF an empty line is a CR, which does not end a list.
    const std::size_t last = line.find_last_not_of(u"\r\n\t");
    if (last != String::npos) line.resize(last + 1);
    return !line.empty();
}

bool LoadWholeText(ErrorRecord& error, const String& name, String& text, Encoding default_encoding,
                   const FileOpener& open) {
    const ScopedState state(u"dFile::PrepareLoadFileContent");
    text.clear();
    Content content;
    if (!ReadContent(error, name, open, content)) return false;
    if (content.bytes.empty()) return true;
    const bool marked = content.encoding != Encoding::Ansi;
    std::size_t position = 0;
    TakeLine(content.bytes, position, text, marked ? content.encoding : default_encoding, true);
    return true;
}

bool LoadTextLines(ErrorRecord& error, const String& name, std::vector<String>& lines,
                   LoadReport* report, const FileOpener& open) {
    const ScopedState state(u"dFile::LoadFileContent");
    lines.clear();
    Content content;
    if (!ReadContent(error, name, open, content)) return false;
    std::size_t position = 0;
    String line;
    bool ended = content.bytes.empty();
    while (!ended && position < content.bytes.size()) {
        ended = !TakeLine(content.bytes, position, line, content.encoding, false);
        if (!ended) lines.push_back(line);
    }
    if (report != nullptr) *report = ReportOf(content, position, lines.size(), ended);
    return true;
}

void DecodeAfterByteOrderMark(String& text) {
    constexpr char16_t kLastMarkByte = 0xBF;
    if (!text.starts_with(kLastMarkByte)) return;
    text.erase(0, 1);
    std::string bytes;
    for (const char16_t unit : text) bytes.push_back(static_cast<char>(unit));
    String decoded;
    if (FromUtf8(bytes, decoded)) text = decoded;
}
