#include "consumers/plain_xml.h"

#include "consumers/markup.h"
#include "files/format.h"

namespace DataConsumers {
namespace {

// A name as that of an opening tag: what would end the tag or break the document becomes an
// underscore. Closing tags have the name as it is; that is published behaviour.
String TagName(String name) {
    for (char16_t& unit : name) {
        if (StringView(u" \"&'<>").find(unit) != StringView::npos) unit = u'_';
    }
    return name;
}

}  // namespace

PlainXml::PlainXml(const XmlNames& names)
    : DocumentForm({.ends_each_file = false, .counts_start = false}),
      names_(names),
      row_start_(Format(u"<%s>\r\n", names.row)),
      row_end_(Format(u"</%s>\r\n", names.row)) {}

void PlainXml::BeginFile(String& out) { out += u"<?xml version='1.0' encoding='UTF-8'?>\r\n"; }

bool PlainXml::BeginTable(String& /*error*/, const RowSet& /*rows*/, String& out) {
    out += Format(u"<%s>\r\n", names_.set);
    return true;
}

bool PlainXml::BeginRows(String& /*error*/, const RowSet& rows, String& /*out*/) {
    MakeTags(rows.Columns);
    return true;
}

bool PlainXml::AppendRow(String& /*error*/, const RowSet& rows, String& out) {
    out += row_start_;
    for (const Tags& tags : tags_) {
        if (tags.position >= rows.Row.size()) break;
        const DataValue& value = rows.Row[tags.position];
        if (!value.Included) continue;
        out += tags.opening;
        if (value.IsNull) {
            out += u"null";
        } else {
            AppendMarkup(out, value.Text);
        }
        out += tags.closing;
    }
    out += row_end_;
    return true;
}

void PlainXml::MakeTags(const std::vector<ColumnDefinition>& columns) {
    tags_.clear();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const String& name = columns[i].Name;
        if (!columns[i].Included) continue;
        if (names_.field_is_tag) {
            tags_.push_back({i, Format(u" <%s>", TagName(name)), Format(u"</%s>\r\n", name)});
        } else {
            tags_.push_back({i, Format(u" <%s %s=\"%s\">", names_.item, names_.attribute, name),
                             Format(u"</%s>\r\n", names_.item)});
        }
    }
}

bool PlainXml::EndFile(String& /*error*/, String& out) {
    out += Format(u"</%s>\r\n", names_.set);
    return true;
}

}  // namespace DataConsumers
