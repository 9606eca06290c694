#include "files/encoding.h"

#include <algorithm>

#include "base/utf8.h"

Encoding EncodingFromWord(StringView word) {
    if (word == u"UTF16" || word == u"Unicode") return Encoding::Utf16LittleEndian;
    if (word == u"UTF8") return Encoding::Utf8;
    return Encoding::Ansi;
}

bool TextEncoder::Encode(StringView text, Encoding encoding, std::span<const std::byte>& bytes) {
    switch (encoding) {
        case Encoding::Utf16LittleEndian:
            bytes = std::as_bytes(std::span(text));
            return true;
        case Encoding::Utf8:
            ToUtf8Bytes(text);
            break;
        case Encoding::Ansi:
            Narrow(text);
            break;
        default:
            return false;
    }
    bytes = bytes_;
    return true;
}

void TextEncoder::Narrow(StringView text) {
    bytes_.resize(text.size());
    std::transform(text.begin(), text.end(), bytes_.begin(),
                   [](char16_t unit) { return static_cast<std::byte>(unit & 0xFF); });
}

void TextEncoder::ToUtf8Bytes(StringView text) {
    unsigned seen = 0;  // a plain loop over all, which the compiler can do in blocks
    for (const char16_t unit : text) seen |= unit;
    if (seen < 0x80) {
        Narrow(text);
        return;
    }
    const std::string encoded = ToUtf8(text);
    const auto view = std::as_bytes(std::span(encoded));
    bytes_.assign(view.begin(), view.end());
}
