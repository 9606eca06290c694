#include "files/line_records.h"

#include <algorithm>
#include <utility>

#include "files/line_splitter.h"
#include "files/text.h"

namespace {

bool IsHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// The first `width` characters of a line, or all that there are.
StringView FirstCharacters(StringView line, std::size_t width) {
    std::size_t length = 0;
    while (width-- != 0 && length < line.size()) {
        const bool pair = IsHighSurrogate(line[length]) && length + 1 < line.size() &&
                          IsLowSurrogate(line[length + 1]);
        length += pair ? 2 : 1;
    }
    return line.substr(0, length);
}

StringView TrimRight(StringView field) {
    const std::size_t last = field.find_last_not_of(text::kBlanks);
    return field.substr(0, last == StringView::npos ? 0 : last + 1);
}

}  // namespace

PlainRecords::PlainRecords(DecodedInput input, String encoding_name, const RecordLayout& layout)
    : DecodedRecords(std::move(input), std::move(encoding_name), layout, LineEnds::LineFeeds),
      delimiter_(layout.delimiter),
      quote_(layout.quote) {}

void PlainRecords::Begin(Content content) {
    stripped_ = content == Content::Data ? StringView{quote_} : StringView{};
    scanned_ = 0;
}

bool PlainRecords::Scan(StringView unread, bool last) {
    const char16_t* const end = unread.data() + unread.size();
    const char16_t* const found = FindLineEnd(unread.data() + scanned_, end);
    scanned_ = static_cast<std::size_t>(found - unread.data());
    if (found == end && !last) return false;
    StringView line = unread.substr(0, scanned_);
    if (line.ends_with(u'\r')) line.remove_suffix(1);
    EndAt(unread, line.size());
    if (line.find(u'\r') != StringView::npos) {
        line_text_ = line;
        std::erase(line_text_, u'\r');
        line = line_text_;
    }
    SplitLine(line, delimiter_, quote_, [this](StringView field) {
        const StringView bare = StripOuterQuotes(field, stripped_);
        fields_.push_back({bare, bare.size() != field.size()});
    });
    return true;
}

WidthRecords::WidthRecords(DecodedInput input, String encoding_name, const RecordLayout& layout)
    : DecodedRecords(std::move(input), std::move(encoding_name), layout, LineEnds::All),
      widths_(layout.widths) {}

void WidthRecords::Begin(Content /*content*/) { scanned_ = 0; }

bool WidthRecords::Scan(StringView unread, bool last) {
    const char16_t* const end = unread.data() + unread.size();
    const char16_t* const found = FindLineEnd(unread.data() + scanned_, end);
    scanned_ = static_cast<std::size_t>(found - unread.data());
    if (found == end && !last) return false;
    EndAt(unread, scanned_);
    Cut(unread.substr(0, scanned_));
    return true;
}

void WidthRecords::Cut(StringView line) {
    if (line.empty()) {
        fields_.push_back({});
        return;
    }
    for (const std::size_t width : widths_) {
        const StringView column = FirstCharacters(line, width);
        line.remove_prefix(column.size());
        fields_.push_back({TrimRight(column)});
    }
    if (!TrimRight(line).empty()) Blame(FaultKind::BeyondColumns);
}
