#include "consumers/excel_file.h"

#include "consumers/plain_sheet.h"
#include "consumers/strict_sheet.h"

namespace DataConsumers {

KeyList ExcelFile::Keys() {
    return {kFormKeys, kUnmappableKeys, kLaterOverwriteKeys, kLaterEncodingKeys, FileKeys()};
}

std::unique_ptr<DocumentForm> ExcelFile::MakeForm(String& /*error*/,
                                                  const SectionSettings& settings) {
    if (settings.Word(kForm, Form::Plain) == Form::Plain) return std::make_unique<PlainSheet>();
    return std::make_unique<StrictSheet>(settings.Word(kUnmappable, Unmappable::Cut),
                                         CharsetOf(StartOf(settings).encoding));
}

}  // namespace DataConsumers
