#pragma once

#include "consumers/document_target.h"

namespace DataConsumers {

// Writes the rows as a workbook in SpreadsheetML, in one of two forms: PlainSheet and StrictSheet.
class ExcelFile final : public DocumentTarget {
public:
    ExcelFile() : DocumentTarget(kLaterOverwrite, kLaterEncoding) {}
    static KeyList Keys();

private:
    std::unique_ptr<DocumentForm> MakeForm(String& error, const SectionSettings& settings) override;
};

}  // namespace DataConsumers
