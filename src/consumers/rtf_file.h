#pragma once

#include "consumers/document_target.h"

namespace DataConsumers {

// Writes the rows as a table of an RTF document, in one of two forms: PlainRtf and StrictRtf.
//
// Open fails with "RTFFile: '%s' has no meaning for a document of ASCII alone." when the strict
// form is given an encoding or a mark.
class RTFFile final : public DocumentTarget {
public:
    RTFFile() : DocumentTarget(kLaterOverwrite, kLaterEncoding) {}
    static KeyList Keys();

private:
    std::unique_ptr<DocumentForm> MakeForm(String& error, const SectionSettings& settings) override;
    TextForm TextFormOf(const SectionSettings& settings) const override;
};

}  // namespace DataConsumers
