#include "consumers/charset.h"

#include "files/format.h"

namespace DataConsumers {
namespace {

struct CodePageName {
    std::uint32_t code_page;
    StringView name;
};

constexpr CodePageName kCodePageNames[] = {
    {866, u"IBM866"},    {874, u"windows-874"}, {932, u"Shift_JIS"},  {936, u"GBK"},
    {949, u"EUC-KR"},    {950, u"Big5"},        {20127, u"US-ASCII"}, {20866, u"KOI8-R"},
    {20932, u"EUC-JP"},  {21866, u"KOI8-U"},    {51932, u"EUC-JP"},   {51949, u"EUC-KR"},
    {54936, u"GB18030"},
};

String NameOfCodePage(std::uint32_t code_page) {
    for (const CodePageName& row : kCodePageNames) {
        if (row.code_page == code_page) return String(row.name);
    }
    if (code_page >= 1250 && code_page <= 1258) return Format(u"windows-%d", code_page);
    if (code_page > 28590 && code_page <= 28605) return Format(u"ISO-8859-%d", code_page - 28590);
    return Format(u"IBM%03d", code_page);
}

}  // namespace

Charset CharsetOf(const FileEncoding& encoding) {
    if (encoding.code_page) return {NameOfCodePage(*encoding.code_page), false};
    if (encoding.form == Encoding::Utf8) return {u"UTF-8", true};
    if (encoding.form == Encoding::Ansi) return {u"ISO-8859-1", false};
    return {u"UTF-16", true};
}

}  // namespace DataConsumers
