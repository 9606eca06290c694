#include "consumers/rtf_file.h"

#include "consumers/plain_rtf.h"
#include "consumers/strict_rtf.h"
#include "files/format.h"

namespace DataConsumers {

KeyList RTFFile::Keys() { return {kFormKeys, kLaterOverwriteKeys, kLaterEncodingKeys, FileKeys()}; }

std::unique_ptr<DocumentForm> RTFFile::MakeForm(String& error, const SectionSettings& settings) {
    if (!WantsStrictForm(settings)) return std::make_unique<PlainRtf>();
    const StringView refused = settings.IsSet(kLaterEncoding) ? u"Encoding"
                               : SetsMark(settings)           ? u"Bom"
                                                              : u"";
    if (!refused.empty()) {
        error = Format(u"RTFFile: '%s' has no meaning for a document of ASCII alone.", refused);
        return nullptr;
    }
    return std::make_unique<StrictRtf>();
}

// All that goes beyond ASCII is escaped.
TextForm RTFFile::TextFormOf(const SectionSettings& settings) const {
    TextForm form = DocumentTarget::TextFormOf(settings);
    if (WantsStrictForm(settings)) form = {.encoding = {.form = Encoding::Utf8}, .marked = false};
    return form;
}

}  // namespace DataConsumers
