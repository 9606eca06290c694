#include "consumers/xml_file.h"

#include "consumers/markup.h"
#include "files/format.h"

namespace DataConsumers {
namespace {

constexpr KeyTable kKeys({
    {.name = u"FieldIsTag",
     .kind = KeyKind::Flag,
     .edition1 = u"0",
     .edition2 = u"0",
     .meaning = u"name the elements of values after their columns"},
    {.name = u"set", .meaning = u"the name of the element around all rows"},
    {.name = u"row", .meaning = u"the name of the element around a row"},
    {.name = u"item", .meaning = u"the name of the element around a value"},
    {.name = u"name", .meaning = u"the name of the attribute that holds a column's name"},
});
constexpr Key kFieldIsTag = kKeys[u"FieldIsTag"];
constexpr Key kSet = kKeys[u"set"];
constexpr Key kRow = kKeys[u"row"];
constexpr Key kItem = kKeys[u"item"];
constexpr Key kNameAttribute = kKeys[u"name"];

// A name as that of an opening tag: what would end the tag or break the document becomes an
// underscore. Closing tags have the name as it is; that is published behaviour.
String TagName(String name) {
    for (char16_t& unit : name) {
        if (StringView(u" \"&'<>").find(unit) != StringView::npos) unit = u'_';
    }
    return name;
}

}  // namespace

KeyList XMLFile::Keys() { return {kKeys, kOverwriteKeys, kLaterEncodingKeys, FileKeys()}; }

bool XMLFile::ReadSettings(String& /*error*/, const SectionSettings& settings) {
    field_is_tag_ = settings.Flag(kFieldIsTag);
    set_ = settings.Text(kSet);
    const String row = settings.Text(kRow);
    row_start_ = Format(u"<%s>\r\n", row);
    row_end_ = Format(u"</%s>\r\n", row);
    item_ = settings.Text(kItem);
    name_attribute_ = settings.Text(kNameAttribute);
    return true;
}

bool XMLFile::BeginFile(String& error) {
    return WriteUncounted(error, u"<?xml version='1.0' encoding='UTF-8'?>\r\n");
}

bool XMLFile::Prepare(String& error, RowSet& /*rows*/) {
    return WriteText(error, Format(u"<%s>\r\n", set_));
}

bool XMLFile::Write(String& error, RowSet& rows) {
    if (TakeNewColumns()) MakeTags(rows.Columns);
    line_ = row_start_;
    for (const Tags& tags : tags_) {
        if (tags.position >= rows.Row.size()) break;
        const DataValue& value = rows.Row[tags.position];
        if (!value.Included) continue;
        line_ += tags.opening;
        if (value.IsNull) {
            line_ += u"null";
        } else {
            AppendMarkup(line_, value.Text);
        }
        line_ += tags.closing;
    }
    line_ += row_end_;
    return WriteText(error, line_);
}

void XMLFile::MakeTags(const std::vector<ColumnDefinition>& columns) {
    tags_.clear();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const String& name = columns[i].Name;
        if (!columns[i].Included) continue;
        if (field_is_tag_) {
            tags_.push_back({i, Format(u" <%s>", TagName(name)), Format(u"</%s>\r\n", name)});
        } else {
            tags_.push_back({i, Format(u" <%s %s=\"%s\">", item_, name_attribute_, name),
                             Format(u"</%s>\r\n", item_)});
        }
    }
}

bool XMLFile::EndFile(String& error) { return WriteText(error, Format(u"</%s>\r\n", set_)); }

}  // namespace DataConsumers
