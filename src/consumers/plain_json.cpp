#include "consumers/plain_json.h"

#include "consumers/escaping.h"
#include "files/format.h"
#include "files/text.h"

namespace DataConsumers {
namespace {

void AppendEscape(String& line, char16_t unit) {
    line += u'\\';
    switch (unit) {
        case u'\r':
            line += u'r';
            break;
        case u'\n':
            line += u'n';
            break;
        case u'\t':
            line += u't';
            break;
        default:
            line += unit;
    }
}

// Appends a name or a value, between quotes where it needs them.
void AppendText(String& line, StringView text) {
    if (text == u"null" || text::IsPlainNumber(text)) {
        line += text;
        return;
    }
    line += u'"';
    const auto is_escaped = [](auto unit) {
        return (unit == u'\\') | (unit == u'"') | (unit == u'\r') | (unit == u'\n') |
               (unit == u'\t') | (unit == u'/');
    };
    AppendEscaped(line, text, is_escaped, AppendEscape);
    line += u'"';
}

}  // namespace

void PlainJson::BeginFile(String& out) {
    rows_in_file_ = 0;
    out += u'[';
}

bool PlainJson::BeginTable(String& /*error*/, const RowSet& /*rows*/, String& /*out*/) {
    return true;
}

bool PlainJson::BeginRows(String& /*error*/, const RowSet& rows, String& /*out*/) {
    MakeNames(rows.Columns);
    return true;
}

bool PlainJson::AppendRow(String& error, const RowSet& rows, String& out) {
    if (rows.Row.size() != rows.Columns.size()) {
        error = Format(u"JSONFile: Broken row structure [Values: %d, Structure: %d for '%s']",
                       rows.Row.size(), rows.Columns.size(), rows.TableName);
        return false;
    }
    if (names_.size() != rows.Columns.size()) MakeNames(rows.Columns);
    out += rows_in_file_++ == 0 ? u" {" : u",\r\n {";
    bool first = true;
    for (std::size_t i = 0; i < rows.Row.size(); ++i) {
        const DataValue& value = rows.Row[i];
        if (!value.Included) continue;
        out.append(names_[i], first ? 1 : 0);  // without the comma
        first = false;
        AppendText(out, value.IsNull ? StringView(u"null") : value.Text);
    }
    out += u" }";
    return true;
}

void PlainJson::MakeNames(const std::vector<ColumnDefinition>& columns) {
    names_.clear();
    for (const ColumnDefinition& column : columns) {
        String& name = names_.emplace_back(u",");
        AppendText(name, column.Name);
        name += u':';
    }
}

bool PlainJson::EndFile(String& /*error*/, String& out) {
    out += u']';
    return true;
}

}  // namespace DataConsumers
