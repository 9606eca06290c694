#include "consumers/plain_rtf.h"

#include "files/format.h"

namespace DataConsumers {
namespace {

constexpr StringView kTitle = u"Results";
constexpr StringView kColourTable =
    u"{\\colortbl;\\red0\\green0\\blue0;\\red0\\green0\\blue255;\\red0\\green255\\blue255;"
    u"\\red0\\green255\\blue0;\\red255\\green0\\blue255;\\red255\\green0\\blue0;"
    u"\\red255\\green255\\blue0;\\red255\\green255\\blue255;\\red0\\green0\\blue128;"
    u"\\red0\\green128\\blue128;\\red0\\green128\\blue0;\\red128\\green0\\blue128;"
    u"\\red128\\green0\\blue0;\\red128\\green128\\blue0;\\red128\\green128\\blue128;"
    u"\\red192\\green192\\blue192;}";
constexpr StringView kA4Page = u"\\paperw11906\\paperh16838";  // in twips
constexpr StringView kRowStart =
    u"{\\trowd\\trgaph108\\trwWidth5000\\trftsWidth2\\trbrdrt\\brdrs\\brdrw10 "
    u"\\trbrdrl\\brdrs\\brdrw10 \\trbrdrb\\brdrs\\brdrw10 \\trbrdrr\\brdrs\\brdrw10 "
    u"\\trbrdrh\\brdrs\\brdrw10 \\trbrdrv\\brdrs\\brdrw10\r\n";
constexpr StringView kCellDefinition =
    u"\\clbrdrt\\brdrs\\brdrw10 \\clbrdrl\\brdrs\\brdrw10 \\clbrdrb\\brdrs\\brdrw10 "
    u"\\clbrdrr\\brdrs\\brdrw10 \\cltxlrtb \r\n";
constexpr StringView kRowDefinitionEnd = u"\\nowidctlpar\\widctlpar\\adjustright\r\n";
constexpr StringView kCellStart = u"\\intbl ";
constexpr StringView kCellEnd = u"\\cell \r\n";
constexpr StringView kRowEnd = u"\\pard \\nowidctlpar\\widctlpar\\adjustright\\row\\pard}\r\n";

// Indexes of the colour table.
constexpr int kNoShading = 0;
constexpr int kSilver = 16;

// All cells are defined, those of removed columns too: they stay empty at the end of the row.
String RowDefinition(std::size_t cells, int shading) {
    String definition(kRowStart);
    for (std::size_t i = 1; i <= cells; ++i) {
        definition += kCellDefinition;
        definition += Format(u"\\clcbpat%d\\cellx%d000", shading, i);
    }
    return definition += kRowDefinitionEnd;
}

}  // namespace

bool PlainRtf::BeginTable(String& /*error*/, const RowSet& rows, String& out) {
    out += Format(u"{\\rtf\\ansi{\\info{\\title %s}} \r\n", kTitle);
    out += kColourTable;
    out += kA4Page;
    out += u"\r\n{\\par ";
    out += RowDefinition(rows.Columns.size(), kSilver);
    for (const ColumnDefinition& column : rows.Columns) {
        if (column.Included) AppendCell(column.Name, out);
    }
    out += kRowEnd;
    return true;
}

bool PlainRtf::AppendRow(String& /*error*/, const RowSet& rows, String& out) {
    if (row_definition_.empty() || defined_cells_ != rows.Row.size()) {
        defined_cells_ = rows.Row.size();
        row_definition_ = RowDefinition(defined_cells_, kNoShading);
    }
    out += row_definition_;
    for (const DataValue& value : rows.Row) {
        if (value.Included) AppendCell(value.IsNull ? StringView(u"NULL") : value.Text, out);
    }
    out += kRowEnd;
    return true;
}

void PlainRtf::AppendCell(StringView text, String& out) {
    out += kCellStart;
    out += text;
    out += kCellEnd;
}

bool PlainRtf::EndFile(String& /*error*/, String& out) {
    out += u"}}";
    return true;
}

}  // namespace DataConsumers
