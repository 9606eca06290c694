#include "config/encoding_setting.h"

FileEncoding ReadEncoding(const SectionSettings& settings, Key key) {
    enum class Word { Ansi, Utf8, Utf16, Unicode, DashedUtf8, DashedUtf16, CodePage };
    switch (settings.Word(key, Word::Ansi)) {
        case Word::Utf8:
        case Word::DashedUtf8:
            return {Encoding::Utf8};
        case Word::Utf16:
        case Word::Unicode:
        case Word::DashedUtf16:
            return {Encoding::Utf16LittleEndian};
        case Word::CodePage:
            return EncodingOfCodePage(settings.Text(key));
        default:
            return {Encoding::Ansi};
    }
}

TextForm ReadTextForm(const SectionSettings& settings, const TextFormKeys& keys) {
    TextForm form;
    form.encoding = ReadEncoding(settings, keys.encoding);
    form.unmappable = settings.Word(keys.unmappable, Unmappable::Cut);
    // UTF-16 without a mark is not told from bytes that mean something else, so it has one unless
    // the job says otherwise.
    const bool wide = form.encoding.form == Encoding::Utf16LittleEndian;
    form.marked = settings.Flag(keys.mark) || (wide && !settings.IsSet(keys.mark));
    form.keeps_encoding = settings.Follows(Rule::AppendKeepsEncoding);
    return form;
}
