#include "consumers/strict_page.h"

#include "files/format.h"

namespace DataConsumers {
namespace {

constexpr StringView kRowEnd = u"</tr>\n";
// Line breaks in values are seen as such.
constexpr StringView kStyle =
    u"<style>\n"
    u"body { font-family: sans-serif }\n"
    u"table { border-collapse: collapse; margin-bottom: 1em }\n"
    u"td, th { border: 1px solid #999; padding: 0.2em 0.5em; text-align: left;"
    u" vertical-align: top; white-space: pre-wrap }\n"
    u"th { background: #ddd }\n"
    u"td.null { background: #f4f4f4 }\n"
    u"</style>\n";

}  // namespace

StrictPage::StrictPage(PageFrame frame, const PageClasses& classes, Unmappable unmappable,
                       const Charset& charset)
    : StrictForm(u"HtmlFile", {.goes_on = false}),
      frame_(std::move(frame)),
      charset_(charset),
      markup_(StrictMarkup::ForHtml(unmappable, charset.unicode)),
      table_tag_(OpeningTag(u"table", classes.table)),
      header_tag_(OpeningTag(u"th scope=\"col\"", classes.header)),
      row_tag_(OpeningTag(u"tr", classes.row)),
      cell_tag_(OpeningTag(u"td", classes.cell)),
      null_cell_(OpeningTag(u"td", classes.cell.empty() ? u"null" : classes.cell + u" null") +
                 u"</td>") {}

// A class that the page cannot hold is left out; it would match no style sheet.
String StrictPage::OpeningTag(StringView element, const String& css_class) {
    String ignored;
    String escaped;
    const bool known = !css_class.empty() && markup_.Append(ignored, css_class, escaped);
    return known ? Format(u"<%s class=\"%s\">", element, escaped) : Format(u"<%s>", element);
}

void StrictPage::AppendFileStart(String& out) {
    if (frame_.own_prologue) {
        out += frame_.prologue;
        return;
    }
    out += u"<!DOCTYPE html>\n<html lang=\"und\">\n<head>\n";
    // The byte-order mark tells of UTF-16; an element that can be read cannot.
    if (charset_.name != u"UTF-16") out += Format(u"<meta charset=\"%s\">\n", charset_.name);
    AppendTitle(out);
    out += kStyle;
    out += u"</head>\n<body>\n";
}

void StrictPage::AppendTitle(String& out) {
    String ignored;
    String title;
    const bool named = !TableName().empty() && markup_.Append(ignored, TableName(), title);
    out += Format(u"<title>%s</title>\n", named ? title : u"Results");
}

bool StrictPage::AppendHead(String& error, String& out) {
    out += table_tag_;
    out += u"\n<thead>\n";
    out += row_tag_;
    for (const Column& column : Columns()) {
        out += header_tag_;
        if (!markup_.Append(error, column.name, out)) return FailAt(error, column);
        out += u"</th>";
    }
    out += kRowEnd;
    out += u"</thead>\n<tbody>\n";
    return true;
}

bool StrictPage::AppendValues(String& error, const DataRow& row, String& out) {
    out += row_tag_;
    for (const Column& column : Columns()) {
        const DataValue& value = row[column.position];
        if (value.IsNull) {
            out += null_cell_;
            continue;
        }
        out += cell_tag_;
        if (!markup_.Append(error, value.Text, out)) return FailAt(error, column);
        out += u"</td>";
    }
    out += kRowEnd;
    return true;
}

void StrictPage::AppendTableEnd(String& out) { out += u"</tbody>\n</table>\n"; }

void StrictPage::AppendFileEnd(String& out) { out += frame_.epilogue; }

}  // namespace DataConsumers
