#include "files/encoding.h"

#include <algorithm>

#include "base/utf8.h"

namespace {

// A plain loop over all, which the compiler can do in blocks.
bool IsAscii(StringView text) {
    unsigned seen = 0;
    for (const char16_t unit : text) seen |= unit;
    return seen < 0x80;
}

}  // namespace

Encoding EncodingFromWord(StringView word) {
    if (word == u"UTF16" || word == u"Unicode") return Encoding::Utf16LittleEndian;
    if (word == u"UTF8") return Encoding::Utf8;
    return Encoding::Ansi;
}

bool PlainTextEncoder::Encode(StringView text, Encoding encoding,
                              std::span<const std::byte>& bytes) {
    switch (encoding) {
        case Encoding::Utf16LittleEndian:
            bytes = std::as_bytes(std::span(text));
            return true;
        case Encoding::Utf8:
            if (IsAscii(text)) {
                Narrow(text);
            } else {
                bytes_.clear();
                AppendUtf8(text, bytes_);
            }
            break;
        case Encoding::Ansi:
            Narrow(text);
            break;
        default:
            return false;
    }
    bytes = std::as_bytes(std::span(bytes_));
    return true;
}

void PlainTextEncoder::Narrow(StringView text) {
    bytes_.resize(text.size());
    std::transform(text.begin(), text.end(), bytes_.begin(),
                   [](char16_t unit) { return static_cast<char>(unit & 0xFF); });
}
