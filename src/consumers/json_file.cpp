#include "consumers/json_file.h"

#include "consumers/plain_json.h"
#include "consumers/strict_json.h"
#include "files/format.h"

namespace DataConsumers {
namespace {

enum class JsonForm { Plain, Strict, Lines };

constexpr KeyTable kKeys({
    {.name = u"Form",
     .kind = KeyKind::Word,
     .words = u"Plain Strict Lines",
     .edition1 = u"Plain",
     .edition2 = u"Strict",
     .meaning = u"as always; as every reader takes it; or that with one object a line",
     .since = Since::Later},
});
constexpr Key kJsonForm = kKeys[u"Form"];

JsonForm FormOf(const SectionSettings& settings) {
    return settings.Word(kJsonForm, JsonForm::Plain);
}

}  // namespace

KeyList JSONFile::Keys() { return {kKeys, kOverwriteKeys, kNarrowEncodingKeys, FileKeys()}; }

std::unique_ptr<DocumentForm> JSONFile::MakeForm(String& error, const SectionSettings& settings) {
    const JsonForm form = FormOf(settings);
    if (form == JsonForm::Plain) return std::make_unique<PlainJson>();
    if (FormOfText().encoding != FileEncoding{.form = Encoding::Utf8}) {
        error = Format(u"JSONFile: Form=%s is UTF-8 and nothing else.", settings.Text(kJsonForm));
        return nullptr;
    }
    if (form == JsonForm::Lines) return std::make_unique<JsonLines>();
    return std::make_unique<StrictJson>();
}

bool JSONFile::WantsStrictForm(const SectionSettings& settings) const {
    return FormOf(settings) != JsonForm::Plain;
}

bool JSONFile::Write(String& error, RowSet& rows) {
    return FileIsOpen() && DocumentTarget::Write(error, rows);
}

}  // namespace DataConsumers
