#include "consumers/strict_rtf.h"

#include <algorithm>
#include <numeric>

#include "base/utf16.h"
#include "consumers/escaping.h"
#include "files/format.h"

namespace DataConsumers {
namespace {

// Twips, of which an inch has 1440. A4 with margins of two centimetres.
constexpr std::size_t kTableWidth = 11906 - 2 * 1134;
constexpr std::size_t kCharacterWidth = 140;  // of a middling character in ten points
constexpr std::size_t kCellPadding = 2 * 108 + 60;

// So much of a table is looked at before its widths are settled.
constexpr std::size_t kHeldRows = 1000;
constexpr std::size_t kHeldUnits = 1 << 20;

constexpr StringView kDocumentHead =
    u"{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1\n"
    u"{\\fonttbl{\\f0\\fswiss\\fcharset0 Arial;}}\n"
    u"{\\colortbl;\\red192\\green192\\blue192;}\n";
// Without \dntblnsbdb LibreOffice mixes other kinds of blanks into several blanks.
constexpr StringView kPage =
    u"\\paperw11906\\paperh16838\\margl1134\\margr1134\\margt1134\\margb1134\\dntblnsbdb\n"
    u"\\f0\\fs20\n";
constexpr StringView kCellBorders =
    u"\\clbrdrt\\brdrs\\brdrw10\\clbrdrl\\brdrs\\brdrw10\\clbrdrb\\brdrs\\brdrw10"
    u"\\clbrdrr\\brdrs\\brdrw10";
constexpr StringView kRowStart = u"{\\trowd\\trgaph108\\trleft0\n";
constexpr StringView kHeadRowStart = u"{\\trowd\\trgaph108\\trleft0\\trhdr\n";
constexpr StringView kShading = u"\\clcbpat1";

// What stands behind it is for readers that know no Unicode: a question mark, as a number, because
// others leave out more than that one character.
void AppendUnit(String& out, char16_t unit) {
    out += Format(u"\\u%d\\'3f", static_cast<std::int16_t>(unit));
}

// The longest line of a text, tabs at their full width.
std::size_t WidthOf(StringView text) {
    constexpr std::size_t kTabCharacters = 6;  // of half an inch
    std::size_t widest = 0;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of(u"\r\n"), text.size());
        const StringView line = text.substr(0, end);
        const auto tabs = static_cast<std::size_t>(std::count(line.begin(), line.end(), u'\t'));
        widest = std::max(widest, end + tabs * (kTabCharacters - 1));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return widest;
}

// Widths in twips. Columns that need less than an equal share get what they need; the others share
// what is left.
std::vector<std::size_t> WidthsOf(const std::vector<std::size_t>& widest) {
    std::vector<std::size_t> widths(widest.size());
    std::vector<std::size_t> order(widest.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return widest[a] < widest[b]; });
    std::size_t left = kTableWidth;
    for (std::size_t i = 0; i < order.size(); ++i) {
        const std::size_t share = left / (order.size() - i);
        const std::size_t characters = std::min<std::size_t>(widest[order[i]], kTableWidth);
        const std::size_t wanted = characters * kCharacterWidth + kCellPadding;
        widths[order[i]] = std::max<std::size_t>(std::min(wanted, share), 1);
        left -= std::min(widths[order[i]], left);
    }
    return widths;
}

String RowDefinition(StringView start, const std::vector<std::size_t>& widths, StringView shading) {
    String definition(start);
    std::size_t right_edge = 0;
    for (const std::size_t width : widths) {
        right_edge += width;
        definition += kCellBorders;
        definition += shading;
        definition += Format(u"\\cellx%d\n", right_edge);
    }
    return definition;
}

}  // namespace

void StrictRtf::AppendFileStart(String& out) {
    out += kDocumentHead;
    out += u"{\\info{\\title ";
    AppendText(TableName().empty() ? StringView(u"Results") : TableName(), out);
    out += u"}}\n";
    out += kPage;
}

bool StrictRtf::AppendHead(String& /*error*/, String& /*out*/) {
    widths_settled_ = false;
    held_.clear();
    held_units_ = 0;
    widest_.clear();
    for (const Column& column : Columns()) widest_.push_back(WidthOf(column.name));
    return true;
}

bool StrictRtf::AppendValues(String& /*error*/, const DataRow& row, String& out) {
    if (widths_settled_) {
        AppendCells(row_definition_, row, out);
        return true;
    }
    HoldRow(row);
    if (held_.size() >= kHeldRows || held_units_ >= kHeldUnits) SettleWidths(out);
    return true;
}

void StrictRtf::HoldRow(const DataRow& row) {
    for (std::size_t i = 0; i < widest_.size(); ++i) {
        const DataValue& value = row[Columns()[i].position];
        widest_[i] = std::max(widest_[i], value.IsNull ? 4 : WidthOf(value.Text));
    }
    AppendCells({}, row, held_.emplace_back());
    held_units_ += held_.back().size();
}

// Writes the row of names and the rows that were held.
void StrictRtf::SettleWidths(String& out) {
    const std::vector<std::size_t> widths = WidthsOf(widest_);
    row_definition_ = RowDefinition(kRowStart, widths, {});
    widths_settled_ = true;
    if (Columns().empty()) return;  // a row has a cell at least
    out += RowDefinition(kHeadRowStart, widths, kShading);
    for (const Column& column : Columns()) {
        out += u"\\pard\\intbl ";
        AppendText(column.name, out);
        out += u"\\cell\n";
    }
    out += u"\\row}\n";
    for (const String& row : held_) {
        out += row_definition_;
        out += row;
    }
    held_.clear();
}

void StrictRtf::AppendCells(StringView definition, const DataRow& row, String& out) {
    if (Columns().empty()) return;
    out += definition;
    for (const Column& column : Columns()) {
        const DataValue& value = row[column.position];
        out += u"\\pard\\intbl ";
        if (value.IsNull) {
            out += u"{\\i NULL}";
        } else {
            AppendText(value.Text, out);
        }
        out += u"\\cell\n";
    }
    out += u"\\row}\n";
}

void StrictRtf::AppendText(StringView text, String& out) {
    const auto is_escaped = [](auto unit) {
        return (unit == u'\\') | (unit == u'{') | (unit == u'}') | (unit <= u'\x1F') |
               (unit >= u'\x7F');
    };
    const auto escape = [this](String& to, StringView rest) {
        const char16_t unit = rest.front();
        std::size_t units = 1;
        if (unit == u'\t') {
            to += u"\\tab ";
        } else if (unit == u'\r' || unit == u'\n') {
            if (rest.starts_with(u"\r\n")) units = 2;
            to += u"\\line ";
        } else if (unit < u' ' || unit == u'\x7F') {
            to += Format(u"\\'%02X", static_cast<std::uint32_t>(unit));
        } else if (unit < u'\x80') {
            to += u'\\';
            to += unit;
        } else if (IsSurrogate(CharacterAt(rest, units))) {
            ++replaced_;
            AppendUnit(to, u'\xFFFD');
        } else {
            for (const char16_t part : rest.substr(0, units)) AppendUnit(to, part);
        }
        return units;
    };
    AppendEscapedCharacters(out, text, is_escaped, escape);
}

void StrictRtf::AppendTableEnd(String& out) {
    if (!widths_settled_) SettleWidths(out);
    out += u"\\pard\\par\n";
}

void StrictRtf::AppendFileEnd(String& out) { out += u"}\n"; }

}  // namespace DataConsumers
