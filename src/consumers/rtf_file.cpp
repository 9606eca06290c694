#include "consumers/rtf_file.h"

#include "consumers/plain_rtf.h"
#include "consumers/strict_rtf.h"
#include "files/format.h"

namespace DataConsumers {

KeyList RTFFile::Keys() { return {kFormKeys, kLaterOverwriteKeys, kLaterEncodingKeys, FileKeys()}; }

std::unique_ptr<DocumentForm> RTFFile::MakeForm(String& error, const SectionSettings& settings) {
    if (settings.Word(kForm, Form::Plain) == Form::Plain) return std::make_unique<PlainRtf>();
    if (settings.IsSet(kLaterEncoding)) {
        error = Format(u"RTFFile: '%s' has no meaning for a document of ASCII alone.",
                       kLaterEncoding->name);
        return nullptr;
    }
    return std::make_unique<StrictRtf>();
}

FileStart RTFFile::StartOf(const SectionSettings& settings) const {
    if (settings.Word(kForm, Form::Plain) == Form::Plain) return PlainStart(settings);
    return {Encoding::Ansi, false};
}

}  // namespace DataConsumers
