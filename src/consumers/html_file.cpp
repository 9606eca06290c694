#include "consumers/html_file.h"

#include "consumers/plain_page.h"
#include "consumers/strict_page.h"
#include "files/format.h"
#include "files/strict_text.h"
#include "files/text_loader.h"
#include "platform/file_system.h"

namespace DataConsumers {
namespace {

constexpr StringView kPrologue = u"<html><body>\r\n";
constexpr StringView kEpilogue = u"</body></html>";

constexpr KeyTable kKeys({
    {.name = u"TableClass",
     .edition1 = u"table",
     .edition2 = u"table",
     .meaning = u"the class of the table"},
    {.name = u"TableHeaderClass", .meaning = u"the class of the names' cells"},
    {.name = u"RowClass", .meaning = u"the class of the rows"},
    {.name = u"CellClass", .meaning = u"the class of the cells"},
    {.name = u"Prologue",
     .edition1 = kPrologue,
     .edition2 = kPrologue,
     .meaning = u"what stands before the table",
     .defaults = u"<html><body> and a line end; with Form=Strict the head of a page"},
    {.name = u"PrologueFile",
     .meaning = u"a file that holds the prologue",
     .names = Names::FileRead},
    {.name = u"Epilogue",
     .edition1 = kEpilogue,
     .edition2 = kEpilogue,
     .meaning = u"what stands behind the table"},
    {.name = u"EpilogueFile",
     .meaning = u"a file that holds the epilogue",
     .names = Names::FileRead},
});
constexpr Key kTableClass = kKeys[u"TableClass"];
constexpr Key kTableHeaderClass = kKeys[u"TableHeaderClass"];
constexpr Key kRowClass = kKeys[u"RowClass"];
constexpr Key kCellClass = kKeys[u"CellClass"];
constexpr Key kPrologueText = kKeys[u"Prologue"];
constexpr Key kPrologueFile = kKeys[u"PrologueFile"];
constexpr Key kEpilogueText = kKeys[u"Epilogue"];
constexpr Key kEpilogueFile = kKeys[u"EpilogueFile"];

// encoding: of files without a mark, that of the page.
bool ReadFrame(String& error, const SectionSettings& settings, Encoding encoding,
               PageFrame& frame) {
    frame.prologue = settings.Text(kPrologueText);
    frame.epilogue = settings.Text(kEpilogueText);
    const String prologue_file = settings.Text(kPrologueFile);
    if (!prologue_file.empty() && !platform::PathExists(prologue_file)) {
        error = Format(u"Prologue file '%s' does not exist or inaccessible.", prologue_file);
        return false;
    }
    frame.own_prologue = !prologue_file.empty() || frame.prologue != kPrologue;
    const String epilogue_file = settings.Text(kEpilogueFile);
    if (!epilogue_file.empty() && !platform::PathExists(epilogue_file)) {
        // Published spelling.
        error = Format(u"Epilogue file '%s' dies not exist or inaccessible.", epilogue_file);
        return false;
    }
    ErrorRecord load_error;
    const bool strict = settings.Follows(Rule::StrictTexts);
    const auto load = [&](const String& file, String& text) {
        if (file.empty()) return true;
        return strict ? LoadStrictText(load_error, file, text)
                      : LoadWholeText(load_error, file, text, encoding);
    };
    const bool loaded = load(prologue_file, frame.prologue) && load(epilogue_file, frame.epilogue);
    if (!loaded) error = load_error.text;
    return loaded;
}

PageClasses ReadClasses(const SectionSettings& settings) {
    return {.table = settings.Text(kTableClass),
            .header = settings.Text(kTableHeaderClass),
            .row = settings.Text(kRowClass),
            .cell = settings.Text(kCellClass)};
}

}  // namespace

KeyList HtmlFile::Keys() {
    return {kKeys, kFormKeys, kLaterOverwriteKeys, kNarrowEncodingKeys, FileKeys()};
}

std::unique_ptr<DocumentForm> HtmlFile::MakeForm(String& error, const SectionSettings& settings) {
    PageFrame frame;
    if (!ReadFrame(error, settings, FormOfText().encoding.form, frame)) return nullptr;
    if (!WantsStrictForm(settings)) {
        return std::make_unique<PlainPage>(std::move(frame), ReadClasses(settings),
                                           !settings.Follows(Rule::NoEmptyTables));
    }
    return std::make_unique<StrictPage>(std::move(frame), ReadClasses(settings),
                                        FormOfText().unmappable, CharsetOf(FormOfText().encoding));
}

}  // namespace DataConsumers
