#include "files/decoded_records.h"

#include <algorithm>
#include <utility>

#include "files/format.h"
#include "files/unit_search.h"

DecodedRecords::DecodedRecords(DecodedInput input, String encoding_name, const RecordLayout& layout,
                               LineEnds line_ends)
    : input_(std::move(input)),
      encoding_name_(std::move(encoding_name)),
      comment_(layout.comment),
      line_ends_(line_ends) {}

bool DecodedRecords::Read(Content content) {
    bool comment = false;
    do {
        start_ = next_;
        line_ = next_line_;
        lines_inside_ = 0;
        skipped_ = 0;
        fault_ = FaultKind::None;
        fields_.clear();
        Begin(content);
        for (;;) {
            StringView unread = input_.Text().substr(start_);
            if (skip_line_feed_ && !unread.empty()) {
                skip_line_feed_ = false;
                if (unread.front() == u'\n') unread = input_.Text().substr(++start_);
            }
            if (!unread.empty()) {
                comment = content == Content::Data && IsComment(unread);
                if (comment ? Skip(unread, ended_) : Scan(unread, ended_)) break;
            } else if (ended_) {
                return false;
            }
            const char16_t* const from = input_.Text().data() + start_;
            ended_ = !input_.More(start_);
            start_ = next_ = 0;  // the next call may find nothing more
            TextMoved(from, input_.Text().data());
            if (ended_ && input_.Failed()) return false;  // nobody knows how the record goes on
        }
    } while (comment);
    if (!input_.Bad().empty()) LookForBadBytes();
    return true;
}

bool DecodedRecords::IsComment(StringView unread) const {
    return comment_ && unread.front() == *comment_;
}

bool DecodedRecords::Skip(StringView unread, bool last) {
    const char16_t* const end = unread.data() + unread.size();
    const char16_t* const found = FindLineEnd(unread.data() + skipped_, end);
    skipped_ = static_cast<std::size_t>(found - unread.data());
    if (found == end && !last) return false;
    EndAt(unread, skipped_);
    return true;
}

const char16_t* DecodedRecords::FindLineEnd(const char16_t* at, const char16_t* end) const {
    const char16_t other = line_ends_ == LineEnds::All ? u'\r' : u'\n';
    return FindUnit(at, end, [=](auto unit) { return (unit == u'\n') | (unit == other); });
}

void DecodedRecords::EndAt(StringView unread, std::size_t length) {
    length_ = length;
    next_ = start_ + length;
    next_line_ = line_ + lines_inside_;
    if (length == unread.size()) return;
    ++next_line_;
    ++next_;
    if (unread[length] != u'\r') return;
    if (length + 1 == unread.size()) {
        skip_line_feed_ = true;  // it may be the first of the next piece
    } else if (unread[length + 1] == u'\n') {
        ++next_;
    }
}

// Only the first of a record is told of.
void DecodedRecords::LookForBadBytes() {
    for (const DecodedInput::BadBytes& bad : input_.Bad()) {
        if (bad.position < start_ || bad.position >= start_ + length_) continue;
        const StringView before = input_.Text().substr(start_, bad.position - start_);
        fault_ = FaultKind::BadBytes;
        bad_offset_ = bad.offset;
        bad_line_ = line_;
        for (std::size_t i = 0; i < before.size(); ++i) {
            const bool pair = before[i] == u'\n' && i != 0 && before[i - 1] == u'\r';
            if ((before[i] == u'\n' || before[i] == u'\r') && !pair) ++bad_line_;
        }
        return;
    }
}

String DecodedRecords::Fault() const {
    switch (fault_) {
        case FaultKind::None:
            break;
        case FaultKind::BehindQuote:
            return u"Text stands behind the closing quote of a field.";
        case FaultKind::InsideQuotes:
            return u"The file ends inside a quoted field.";
        case FaultKind::BeyondColumns:
            return u"Text stands beyond the last column.";
        case FaultKind::BadBytes:
            return Format(u"The bytes at offset %I64u (line %I64u) are not valid %s.", bad_offset_,
                          bad_line_, encoding_name_);
    }
    return {};
}
