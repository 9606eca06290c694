#include "config/encoding_setting.h"

Encoding ReadEncoding(const SectionSettings& settings, Key key) {
    enum class Word { Ansi, Utf8, Utf16, Unicode, DashedUtf8, DashedUtf16 };
    switch (settings.Word(key, Word::Ansi)) {
        case Word::Utf8:
        case Word::DashedUtf8:
            return Encoding::Utf8;
        case Word::Utf16:
        case Word::Unicode:
        case Word::DashedUtf16:
            return Encoding::Utf16LittleEndian;
        default:
            return Encoding::Ansi;
    }
}
