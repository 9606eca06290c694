#include "transformers/column_setting.h"

#include <limits>

#include "files/format.h"
#include "files/text.h"

namespace DataTransformers {

bool ReadRequired(String& error, const SectionSettings& settings, StringView transformer, Key key,
                  String& value) {
    value = settings.Text(key);
    if (!value.empty()) return true;
    error = Format(u"%s transformer: No '%s' parameter provided.", transformer, key->name);
    return false;
}

bool ReadColumnNumber(String& error, StringView transformer, StringView number,
                      std::size_t& position) {
    const std::int64_t column = text::ToInteger(number);
    if (column == 0) {
        error = Format(u"%s transformer: invalid column index '%s'. Expect positive integer.",
                       transformer, number);
        return false;
    }
    constexpr std::size_t kNowhere = std::numeric_limits<std::size_t>::max();
    position = column < 0 ? kNowhere : static_cast<std::size_t>(column) - 1;
    return true;
}

bool ReadColumn(String& error, const SectionSettings& settings, StringView transformer, Key key,
                std::size_t& position) {
    String number;
    return ReadRequired(error, settings, transformer, key, number) &&
           ReadColumnNumber(error, transformer, number, position);
}

}  // namespace DataTransformers
