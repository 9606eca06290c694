#include "consumers/excel_file.h"

#include "consumers/plain_sheet.h"
#include "consumers/strict_sheet.h"

namespace DataConsumers {

KeyList ExcelFile::Keys() {
    return {kFormKeys, kLaterOverwriteKeys, kLaterEncodingKeys, FileKeys()};
}

std::unique_ptr<DocumentForm> ExcelFile::MakeForm(String& /*error*/,
                                                  const SectionSettings& settings) {
    if (!WantsStrictForm(settings)) return std::make_unique<PlainSheet>();
    return std::make_unique<StrictSheet>(FormOfText().unmappable, CharsetOf(FormOfText().encoding));
}

}  // namespace DataConsumers
