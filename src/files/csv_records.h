#pragma once

#include "files/decoded_records.h"

// Records by RFC 4180, with any delimiter and quote: a quoted field may hold delimiters, line ends
// and doubled quotes. A quote inside an unquoted field is text. LF, CR LF and CR end a record.
class CsvRecords final : public DecodedRecords {
public:
    CsvRecords(DecodedInput input, String encoding_name, const RecordLayout& layout);

private:
    enum class Place { FieldStart, Unquoted, Quoted, BehindQuote };

    void Begin(Content content) override;
    bool Scan(StringView unread, bool last) override;
    void Rebase(const char16_t* base);

    const char16_t delimiter_;
    const char16_t quote_;
    const bool has_quote_;

    // Where the scan stands: positions from the start of the record.
    Place place_ = Place::FieldStart;
    const char16_t* base_ = nullptr;  // where the record began when the scan stopped
    std::size_t at_ = 0;
    std::size_t field_ = 0;
    std::size_t field_end_ = 0;  // of a quoted field
    bool doubled_ = false;       // the field holds a doubled quote
};
