#include "config/text_dialect.h"

#include "core/key_values.h"
#include "files/format.h"

namespace {

constexpr StringView kLineEnds = u"\r\n";

String DelimiterOf(const SectionSettings& settings) {
    String value = settings.Text(kDelimiter);
    const bool escape = value == u"\\t" && settings.Follows(Rule::TabHasEscape);
    if (value == u"tab" || value == u"<tab>" || escape) return u"\t";
    return value;
}

bool Holds(StringView text, StringView part) {
    return !part.empty() && text.find(part) != StringView::npos;
}

bool CheckCsvSigns(String& error, const TextSigns& signs, StringView quote_name, bool may_lack) {
    const auto check = [&](StringView name, StringView value) {
        if (value.size() == 1 || (value.empty() && may_lack)) return true;
        error = Format(u"With Dialect=CSV the %s is one character, not '%s'.", name, value);
        return false;
    };
    if (!check(kDelimiter->name, signs.delimiter) || !check(quote_name, signs.quote)) return false;
    const String both = signs.delimiter + signs.quote;
    const bool same = both.size() == 2 && both[0] == both[1];
    if (!same && both.find_first_of(kLineEnds) == String::npos) return true;
    error = Format(
        u"With Dialect=CSV the Delimiter and the %s differ from each other and are no line ends.",
        quote_name);
    return false;
}

}  // namespace

bool ReadTextSigns(String& error, const SectionSettings& settings, Key quote, bool may_lack,
                   TextSigns& signs) {
    signs.dialect = settings.Word<Dialect>(kDialect);
    signs.delimiter = DelimiterOf(settings);
    signs.quote = settings.Text(quote);
    signs.widths = key_values::Numbers(settings.Text(kWidths)).value_or(std::vector<std::size_t>());
    const bool csv = signs.dialect == Dialect::Csv && signs.widths.empty();
    return !csv || CheckCsvSigns(error, signs, quote->name, may_lack);
}

bool ReadNullText(String& error, const SectionSettings& settings, const TextSigns& signs,
                  std::optional<String>& null_text) {
    null_text.reset();
    const bool given = settings.IsGiven(kNullText);
    if (!given && signs.dialect == Dialect::Plain) return true;
    null_text = settings.Text(kNullText);
    const bool has_signs = signs.widths.empty() &&
                           (Holds(*null_text, signs.delimiter) || Holds(*null_text, signs.quote));
    if (!has_signs && null_text->find_first_of(kLineEnds) == String::npos) return true;
    error = Format(u"NullText '%s' holds the delimiter, the quote or a line end.", *null_text);
    return false;
}
