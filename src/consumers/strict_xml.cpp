#include "consumers/strict_xml.h"

#include "consumers/xml_names.h"
#include "files/format.h"

namespace DataConsumers {

StrictXml::StrictXml(const XmlNames& names, Unmappable unmappable, const Charset& charset)
    : StrictForm(u"XMLFile", {.goes_on = false}),
      names_(names),
      charset_(charset),
      row_start_(Format(u"<%s>\n", names.row)),
      row_end_(Format(u"</%s>\n", names.row)),
      markup_(StrictMarkup::ForXml(unmappable, charset.unicode)) {}

void StrictXml::AppendFileStart(String& out) {
    out += Format(u"<?xml version=\"1.0\" encoding=\"%s\"?>\n<%s>\n", charset_.name, names_.set);
}

bool StrictXml::AppendHead(String& error, String& /*out*/) {
    tags_.clear();
    for (const Column& column : Columns()) {
        const String element =
            names_.field_is_tag ? XmlNameOf(column.name, charset_.unicode) : names_.item;
        String opening = Format(u" <%s", element);
        if (!names_.field_is_tag) {
            opening += Format(u" %s=\"", names_.attribute);
            if (!markup_.Append(error, column.name, opening)) return FailAt(error, column);
            opening += u'"';
        }
        tags_.push_back({std::move(opening), Format(u"</%s>\n", element)});
    }
    return true;
}

bool StrictXml::AppendValues(String& error, const DataRow& row, String& out) {
    out += row_start_;
    for (std::size_t i = 0; i < tags_.size(); ++i) {
        const DataValue& value = row[Columns()[i].position];
        out += tags_[i].opening;
        if (value.IsNull) {
            out += u" nil=\"true\"/>\n";
            continue;
        }
        out += u'>';
        if (!markup_.Append(error, value.Text, out)) return FailAt(error, Columns()[i]);
        out += tags_[i].closing;
    }
    out += row_end_;
    return true;
}

void StrictXml::AppendFileEnd(String& out) { out += Format(u"</%s>\n", names_.set); }

}  // namespace DataConsumers
