#pragma once

#include "files/decoded_records.h"
#include "files/unit_search.h"

// Records by RFC 4180, with any delimiter and quote: a quoted field may hold delimiters, line ends
// and doubled quotes. A quote inside an unquoted field is text. LF, CR LF and CR end a record.
class CsvRecords final : public DecodedRecords {
public:
    CsvRecords(DecodedInput input, String encoding_name, const RecordLayout& layout);

private:
    enum class Place { FieldStart, Unquoted, Quoted, BehindQuote };

    void Begin(Content content) override;
    bool Scan(StringView unread, bool last) override;
    void TextMoved(const char16_t* from, const char16_t* to) override;

    const char16_t delimiter_;
    const char16_t quote_;
    const bool has_quote_;
    UnitScan ends_;  // of unquoted fields

    // Where the scan stands: positions from the start of the record.
    Place place_ = Place::FieldStart;
    std::size_t at_ = 0;
    std::size_t field_ = 0;
    std::size_t field_end_ = 0;  // of a quoted field
    bool doubled_ = false;       // the field holds a doubled quote
};
