#include "files/strict_text.h"

#include <algorithm>
#include <cstddef>
#include <memory>

#include "base/utf8.h"
#include "files/byte_order_mark.h"
#include "files/format.h"
#include "files/raw_text.h"

namespace {

// Reads until the stream ends. A file's length is a first guess: it may grow, and a pipe has none.
bool ReadToEnd(ErrorRecord& error, platform::InputFile& stream, std::vector<std::byte>& bytes) {
    constexpr std::size_t kLeastRoom = 65'536;
    const auto expected = static_cast<std::size_t>(stream.Size().value_or(0));
    std::size_t filled = 0;
    do {
        bytes.resize(std::max({expected + 1, filled * 2, kLeastRoom}));  // one more sees the end
        filled += stream.ReadFully(std::span(bytes).subspan(filled));
    } while (filled == bytes.size());
    bytes.resize(filled);
    if (stream.Failed()) error.text = u"Could not read the file to its end.";
    return !stream.Failed();
}

// The line of what follows `before`.
std::size_t LineBehind(StringView before) {
    return 1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), u'\n'));
}

bool DecodeUtf8(ErrorRecord& error, const String& name, RawText bytes, String& text) {
    const std::string_view narrow(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (FromUtf8(narrow, text)) return true;
    error.text = Format(u"File '%s', line %u: the bytes are not valid UTF-8.", name,
                        LineBehind(text));  // `text` ends where the fault is
    return false;
}

bool DecodeUtf16(ErrorRecord& error, const String& name, RawText bytes, bool little_endian,
                 String& text) {
    text.resize(bytes.size() / 2);
    for (std::size_t i = 0; i < text.size(); ++i) {
        text[i] = UnitAtStart(bytes.subspan(2 * i), little_endian);
    }
    const StringView before = StringView{text}.substr(0, FindUnpairedSurrogate(text));
    if (before.size() == text.size() && bytes.size() % 2 == 0) return true;
    error.text =
        Format(u"File '%s', line %u: the bytes are not valid UTF-16.", name, LineBehind(before));
    return false;
}

}  // namespace

bool LoadStrictText(ErrorRecord& error, const String& name, String& text, const FileOpener& open) {
    text.clear();
    Encoding encoding = Encoding::Ansi;
    const std::unique_ptr<platform::InputFile> stream = OpenByMark(error, name, encoding, open);
    std::vector<std::byte> bytes;
    if (!stream || !ReadToEnd(error, *stream, bytes)) return false;
    const RawText all = AsRawText(bytes);
    // OpenByMark leaves a UTF-16 mark in the stream.
    const bool decoded =
        IsWide(encoding) ? DecodeUtf16(error, name, all.subspan(ByteOrderMarkOf(encoding).size()),
                                       encoding == Encoding::Utf16LittleEndian, text)
                         : DecodeUtf8(error, name, all, text);
    if (!decoded) text.clear();
    return decoded;
}

std::vector<StringView> SplitIntoLines(StringView text) {
    std::vector<StringView> lines;
    while (!text.empty()) {
        const std::size_t line_feed = text.find(u'\n');
        const bool ended = line_feed != StringView::npos;
        StringView line = text.substr(0, line_feed);
        text.remove_prefix(ended ? line_feed + 1 : text.size());
        if (ended && line.ends_with(u'\r')) line.remove_suffix(1);
        lines.push_back(line);
    }
    return lines;
}
