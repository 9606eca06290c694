#include "files/encoding.h"

#include "files/format.h"
#include "files/text.h"

FileEncoding EncodingOfCodePage(StringView word) {
    const std::int64_t number = text::ToInteger(word.substr(2));
    switch (number) {
        case 1200:
            return {Encoding::Utf16LittleEndian};
        case 1201:
            return {Encoding::Utf16BigEndian};
        case 65001:
            return {Encoding::Utf8};
        default:
            return {Encoding::Ansi, static_cast<std::uint32_t>(number)};
    }
}

String NameOf(const FileEncoding& encoding) {
    if (encoding.code_page) return Format(u"CP%u", *encoding.code_page);
    switch (encoding.form) {
        case Encoding::Utf8:
            return u"UTF8";
        case Encoding::Utf16LittleEndian:
            return u"UTF16";
        case Encoding::Utf16BigEndian:
            return u"UTF16BE";
        default:
            return u"ANSI";
    }
}
