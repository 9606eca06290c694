#pragma once

#include "consumers/document_target.h"

namespace DataConsumers {

// Writes the rows as JSON, in one of three forms: PlainJson, StrictJson and JsonLines.
//
// Open fails with "JSONFile: Form=%s is UTF-8 and nothing else." where the strict forms are asked
// for another encoding.
class JSONFile final : public DocumentTarget {
public:
    JSONFile() : DocumentTarget(kOverwrite, kNarrowEncoding) {}
    static KeyList Keys();

    // As the form does; without a text when no file is open.
    bool Write(String& error, RowSet& rows) override;

private:
    std::unique_ptr<DocumentForm> MakeForm(String& error, const SectionSettings& settings) override;
    bool WantsStrictForm(const SectionSettings& settings) const override;
};

}  // namespace DataConsumers
