#include "files/csv_records.h"

#include <utility>

CsvRecords::CsvRecords(DecodedInput input, String encoding_name, const RecordLayout& layout)
    : DecodedRecords(std::move(input), std::move(encoding_name), layout, LineEnds::All),
      delimiter_(layout.delimiter),
      quote_(layout.quote.empty() ? layout.delimiter : layout.quote.front()),
      has_quote_(!layout.quote.empty()) {}

void CsvRecords::Begin(Content /*content*/) {
    place_ = Place::FieldStart;
    at_ = field_ = 0;
    doubled_ = false;
}

// The fields of a record that goes on move with the text.
void CsvRecords::TextMoved(const char16_t* from, const char16_t* to) {
    ends_.Forget();
    for (RecordField& field : fields_) {
        field.text = {to + (field.text.data() - from), field.text.size()};
    }
}

// One straight flow through the places of a field. Where the text runs out it notes the place, to
// go on there with more: a value of any length is looked at once.
bool CsvRecords::Scan(StringView unread, bool last) {
    const char16_t* const begin = unread.data();
    const char16_t* const end = begin + unread.size();
    const char16_t* at = begin + at_;
    const auto ends_unquoted = [delimiter = delimiter_](auto unit) {
        return (unit == delimiter) | (unit == u'\n') | (unit == u'\r');
    };
    const auto stops_quoted = [quote = quote_](auto unit) {
        return (unit == quote) | (unit == u'\n') | (unit == u'\r');
    };
    const auto field_text = [&](const char16_t* to) {
        return StringView(begin + field_, static_cast<std::size_t>(to - begin) - field_);
    };
    for (;;) {
        switch (place_) {
            case Place::FieldStart:
                if (at == end && !last) break;
                if (at != end && *at == quote_ && has_quote_) {
                    ++at;
                    place_ = Place::Quoted;
                    doubled_ = false;
                    field_ = static_cast<std::size_t>(at - begin);
                    continue;
                }
                place_ = Place::Unquoted;
                field_ = static_cast<std::size_t>(at - begin);
                [[fallthrough]];

            case Place::Unquoted:
                at = ends_.Next(at, end, ends_unquoted);
                if (at == end && !last) break;
                fields_.push_back({field_text(at)});
                if (at != end && *at == delimiter_) {
                    ++at;
                    place_ = Place::FieldStart;
                    continue;
                }
                EndAt(unread, static_cast<std::size_t>(at - begin));
                return true;

            case Place::Quoted:
                at = FindUnit(at, end, stops_quoted);
                if (at == end) {
                    if (!last) break;
                    Blame(FaultKind::InsideQuotes);
                    fields_.push_back({field_text(at), true, doubled_});
                    EndAt(unread, unread.size());
                    return true;
                }
                if (*at != quote_) {
                    // CR LF is one line end; what stands before the first character is the quote.
                    if (*at == u'\r' || at[-1] != u'\r') CountLineInside();
                    ++at;
                    continue;
                }
                if (at + 1 == end && !last) break;
                if (at + 1 != end && at[1] == quote_) {
                    doubled_ = true;
                    at += 2;
                    continue;
                }
                field_end_ = static_cast<std::size_t>(at - begin);
                ++at;
                place_ = Place::BehindQuote;
                [[fallthrough]];

            case Place::BehindQuote: {
                const char16_t* const behind = at;
                at = ends_.Next(at, end, ends_unquoted);
                if (at != behind) Blame(FaultKind::BehindQuote);
                if (at == end && !last) break;
                fields_.push_back({field_text(begin + field_end_), true, doubled_});
                if (at != end && *at == delimiter_) {
                    ++at;
                    place_ = Place::FieldStart;
                    continue;
                }
                EndAt(unread, static_cast<std::size_t>(at - begin));
                return true;
            }
        }
        at_ = static_cast<std::size_t>(at - begin);
        return false;
    }
}
