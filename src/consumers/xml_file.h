#pragma once

#include "consumers/document_target.h"

namespace DataConsumers {

// Writes the rows as XML, in one of two forms: PlainXml and StrictXml.
//
// With the strict form Open fails with "XMLFile: '%s' is no name that XML takes for '%s'." and the
// value and the key, and with "XMLFile: '%s' cannot be the attribute with the names." for "nil",
// which tells NULL, and "xmlns", which is XML's own.
class XMLFile final : public DocumentTarget {
public:
    XMLFile() : DocumentTarget(kOverwrite, kLaterEncoding) {}
    static KeyList Keys();

private:
    std::unique_ptr<DocumentForm> MakeForm(String& error, const SectionSettings& settings) override;
};

}  // namespace DataConsumers
