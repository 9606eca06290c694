#include "consumers/plain_page.h"

#include "consumers/markup.h"
#include "files/format.h"

namespace DataConsumers {
namespace {

constexpr StringView kTableEnd = u"</table>\r\n";
constexpr StringView kRowEnd = u"</tr>\r\n";

String OpeningTag(StringView element, const String& css_class) {
    if (css_class.empty()) return Format(u"<%s>\r\n", element);
    return Format(u"<%s class=\"%s\">\r\n", element, css_class);
}

}  // namespace

PlainPage::PlainPage(PageFrame frame, const PageClasses& classes, bool leaves_empty_table)
    : DocumentForm({}),
      frame_(std::move(frame)),
      table_tag_(OpeningTag(u"table", classes.table)),
      header_tag_(OpeningTag(u"th", classes.header)),
      row_tag_(OpeningTag(u"tr", classes.row)),
      cell_tag_(OpeningTag(u"td", classes.cell)),
      leaves_empty_table_(leaves_empty_table) {}

void PlainPage::BeginFile(String& /*out*/) { header_row_pending_ = true; }

bool PlainPage::BeginTable(String& /*error*/, const RowSet& /*rows*/, String& out) {
    out += frame_.prologue;
    out += table_tag_;
    return true;
}

bool PlainPage::AppendRow(String& /*error*/, const RowSet& rows, String& out) {
    if (header_row_pending_) AppendHeaderRow(rows, out);
    header_row_pending_ = false;
    out += row_tag_;
    for (const DataValue& value : rows.Row) {
        if (!value.Included) continue;
        out += cell_tag_;
        if (value.IsNull) {
            out += u"NULL";
        } else {
            AppendMarkup(out, value.Text);
        }
        out += u"</td>";
    }
    out += kRowEnd;
    return true;
}

void PlainPage::AppendHeaderRow(const RowSet& rows, String& out) const {
    out += row_tag_;
    for (const ColumnDefinition& column : rows.Columns) {
        if (!column.Included) continue;
        out += header_tag_;
        out += column.Name;
        out += u"</th>";
    }
    out += kRowEnd;
}

void PlainPage::AppendNextTable(String& out) const {
    out += kTableEnd;
    out += table_tag_;
}

// The new table has no row of names; so BeginTable must not begin another one.
bool PlainPage::NextTable(String& /*error*/, String& out) {
    AppendNextTable(out);
    return false;
}

void PlainPage::LeaveFile(String& out) {
    if (leaves_empty_table_) AppendNextTable(out);
}

bool PlainPage::EndFile(String& /*error*/, String& out) {
    out += kTableEnd;
    out += frame_.epilogue;
    return true;
}

}  // namespace DataConsumers
