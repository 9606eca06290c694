#include "consumers/html_file.h"

#include "consumers/markup.h"
#include "files/format.h"
#include "platform/file_system.h"

namespace DataConsumers {
namespace {

constexpr StringView kTableEnd = u"</table>\r\n";
constexpr StringView kRowEnd = u"</tr>\r\n";

String OpeningTag(StringView element, const String& css_class) {
    if (css_class.empty()) return Format(u"<%s>\r\n", element);
    return Format(u"<%s class=\"%s\">\r\n", element, css_class);
}

}  // namespace

bool HtmlFile::ReadSettings(String& error, const SectionSettings& settings) {
    encoding_ = settings.Text(u"Encoding") == u"UTF8" ? Encoding::Utf8 : Encoding::Ansi;
    table_tag_ = OpeningTag(u"table", settings.Text(u"TableClass", u"table"));
    header_tag_ = OpeningTag(u"th", settings.Text(u"TableHeaderClass"));
    row_tag_ = OpeningTag(u"tr", settings.Text(u"RowClass"));
    cell_tag_ = OpeningTag(u"td", settings.Text(u"CellClass"));
    return ReadFrame(error, settings);
}

bool HtmlFile::ReadFrame(String& error, const SectionSettings& settings) {
    prologue_ = settings.Text(u"Prologue", u"<html><body>\r\n");
    epilogue_ = settings.Text(u"Epilogue", u"</body></html>");
    const String prologue_file = settings.Text(u"PrologueFile");
    if (!prologue_file.empty() && !platform::PathExists(prologue_file)) {
        error = Format(u"Prologue file '%s' does not exist or inaccessible.", prologue_file);
        return false;
    }
    const String epilogue_file = settings.Text(u"EpilogueFile");
    if (!epilogue_file.empty() && !platform::PathExists(epilogue_file)) {
        // Published spelling.
        error = Format(u"Epilogue file '%s' dies not exist or inaccessible.", epilogue_file);
        return false;
    }
    ErrorRecord load_error;
    // A file without a mark is in the encoding of the page.
    const auto load = [&](const String& file, String& text) {
        return file.empty() || dFile::PrepareLoadFileContent(load_error, file, text, encoding_);
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

// A new table, which has no row of names; so Prepare must not begin another one.
bool HtmlFile::ContinueFile(String& error) {
    line_ = kTableEnd;
    line_ += table_tag_;
    WriteText(error, line_);
    return false;
}

bool HtmlFile::EndFile(String& error) {
    line_ = kTableEnd;
    line_ += epilogue_;
    return WriteText(error, line_);
}

}  // namespace DataConsumers
