#include "consumers/html_file.h"

#include "consumers/markup.h"
#include "files/format.h"
#include "files/strict_text.h"
#include "files/text_loader.h"
#include "platform/file_system.h"

namespace DataConsumers {
namespace {

constexpr StringView kTableEnd = u"</table>\r\n";
constexpr StringView kRowEnd = u"</tr>\r\n";
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
     .defaults = u"<html><body> and a line end"},
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

String OpeningTag(StringView element, const String& css_class) {
    if (css_class.empty()) return Format(u"<%s>\r\n", element);
    return Format(u"<%s class=\"%s\">\r\n", element, css_class);
}

}  // namespace

KeyList HtmlFile::Keys() { return {kKeys, kLaterOverwriteKeys, kNarrowEncodingKeys, FileKeys()}; }

bool HtmlFile::ReadSettings(String& error, const SectionSettings& settings) {
    leaves_empty_table_ = !settings.Follows(Rule::NoEmptyTables);
    table_tag_ = OpeningTag(u"table", settings.Text(kTableClass));
    header_tag_ = OpeningTag(u"th", settings.Text(kTableHeaderClass));
    row_tag_ = OpeningTag(u"tr", settings.Text(kRowClass));
    cell_tag_ = OpeningTag(u"td", settings.Text(kCellClass));
    return ReadFrame(error, settings);
}

bool HtmlFile::ReadFrame(String& error, const SectionSettings& settings) {
    prologue_ = settings.Text(kPrologueText);
    epilogue_ = settings.Text(kEpilogueText);
    const String prologue_file = settings.Text(kPrologueFile);
    if (!prologue_file.empty() && !platform::PathExists(prologue_file)) {
        error = Format(u"Prologue file '%s' does not exist or inaccessible.", prologue_file);
        return false;
    }
    const String epilogue_file = settings.Text(kEpilogueFile);
    if (!epilogue_file.empty() && !platform::PathExists(epilogue_file)) {
        // Published spelling.
        error = Format(u"Epilogue file '%s' dies not exist or inaccessible.", epilogue_file);
        return false;
    }
    ErrorRecord load_error;
    // A file without a mark is in the encoding of the page.
    const Encoding encoding = ReadEncoding(settings, kNarrowEncoding).form;
    const bool strict = settings.Follows(Rule::StrictTexts);
    const auto load = [&](const String& file, String& text) {
        if (file.empty()) return true;
        return strict ? LoadStrictText(load_error, file, text)
                      : LoadWholeText(load_error, file, text, encoding);
    };
    const bool loaded = load(prologue_file, prologue_) && load(epilogue_file, epilogue_);
    if (!loaded) error = load_error.text;
    return loaded;
}

bool HtmlFile::BeginFile(String& /*error*/) {
    header_row_pending_ = true;
    return true;
}

bool HtmlFile::Prepare(String& error, RowSet& /*rows*/) {
    line_ = prologue_;
    line_ += table_tag_;
    return WriteText(error, line_);
}

bool HtmlFile::Write(String& error, RowSet& rows) {
    line_.clear();
    if (header_row_pending_) AppendHeaderRow(rows);
    header_row_pending_ = false;
    line_ += row_tag_;
    for (const DataValue& value : rows.Row) {
        if (!value.Included) continue;
        line_ += cell_tag_;
        if (value.IsNull) {
            line_ += u"NULL";
        } else {
            AppendMarkup(line_, value.Text);
        }
        line_ += u"</td>";
    }
    line_ += kRowEnd;
    return WriteText(error, line_);
}

void HtmlFile::AppendHeaderRow(const RowSet& rows) {
    line_ += row_tag_;
    for (const ColumnDefinition& column : rows.Columns) {
        if (!column.Included) continue;
        line_ += header_tag_;
        line_ += column.Name;
        line_ += u"</th>";
    }
    line_ += kRowEnd;
}

bool HtmlFile::BeginNextTable(String& error) {
    line_ = kTableEnd;
    line_ += table_tag_;
    return WriteText(error, line_);
}

// The new table has no row of names; so Prepare must not begin another one.
bool HtmlFile::ContinueFile(String& error) {
    BeginNextTable(error);
    return false;
}

bool HtmlFile::LeaveFile(String& error) { return !leaves_empty_table_ || BeginNextTable(error); }

bool HtmlFile::EndFile(String& error) {
    line_ = kTableEnd;
    line_ += epilogue_;
    return WriteText(error, line_);
}

}  // namespace DataConsumers
