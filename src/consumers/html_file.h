#pragma once

#include "consumers/document_target.h"

namespace DataConsumers {

// Writes the rows as tables of an HTML page, in one of two forms: PlainPage and StrictPage.
//
// Open fails with "Prologue file '%s' does not exist or inaccessible." and "Epilogue file '%s' dies
// not exist or inaccessible.", or with dFile's message when such a file cannot be read. Without a
// mark these files are read as UTF-8, or byte by byte where they are not that.
class HtmlFile final : public DocumentTarget {
public:
    HtmlFile() : DocumentTarget(kLaterOverwrite, kNarrowEncoding) {}
    static KeyList Keys();

private:
    std::unique_ptr<DocumentForm> MakeForm(String& error, const SectionSettings& settings) override;
};

}  // namespace DataConsumers
