#include "consumers/xml_file.h"

#include <algorithm>

#include "consumers/markup.h"
#include "files/format.h"

namespace DataConsumers {
namespace {

// Appends a name as that of an opening tag: what would end the tag or break the document becomes an
// underscore. Closing tags have the name as it is; that is published behaviour.
void AppendTagName(String& line, StringView name) {
    for (const char16_t unit : name) {
        const bool replaced = StringView(u" \"&'<>").find(unit) != StringView::npos;
        line += replaced ? u'_' : unit;
    }
}

}  // namespace

bool XMLFile::ReadSettings(String& /*error*/, const SectionSettings& settings) {
    encoding_ = Encoding::Utf8;
    field_is_tag_ = settings.Flag(u"FieldIsTag", false);
    set_ = settings.Text(u"set");
    const String row = settings.Text(u"row");
    row_start_ = Format(u"<%s>\r\n", row);
    row_end_ = Format(u"</%s>\r\n", row);
    const String item = settings.Text(u"item");
    item_start_ = Format(u" <%s %s=\"", item, settings.Text(u"name"));
    item_end_ = Format(u"</%s>\r\n", item);
    append_ = !settings.Flag(u"Overwrite", false);
    return true;
}

bool XMLFile::BeginFile(String& error) {
    return WriteUncounted(error, u"<?xml version='1.0' encoding='UTF-8'?>\r\n");
}

bool XMLFile::Prepare(String& error, RowSet& /*rows*/) {
    return WriteText(error, Format(u"<%s>\r\n", set_));
}

bool XMLFile::Write(String& error, RowSet& rows) {
    line_ = row_start_;
    const std::size_t count = std::min(rows.Row.size(), rows.Columns.size());
    for (std::size_t i = 0; i < count; ++i) {
        if (rows.Columns[i].Included) AppendValue(rows.Columns[i], rows.Row[i]);
    }
    line_ += row_end_;
    return WriteText(error, line_);
}

void XMLFile::AppendValue(const ColumnDefinition& column, const DataValue& value) {
    if (field_is_tag_) {
        line_ += u" <";
        AppendTagName(line_, column.Name);
        line_ += u'>';
    } else {
        line_ += item_start_;
        line_ += column.Name;
        line_ += u"\">";
    }
    if (value.IsNull) {
        line_ += u"null";
    } else {
        AppendMarkup(line_, value.Text);
    }
    if (!field_is_tag_) {
        line_ += item_end_;
        return;
    }
    line_ += u"</";
    line_ += column.Name;
    line_ += u">\r\n";
}

bool XMLFile::EndFile(String& error) { return WriteText(error, Format(u"</%s>\r\n", set_)); }

bool XMLFile::LeaveFile(String& /*error*/) {
    CloseFile();
    return true;
}

}  // namespace DataConsumers
