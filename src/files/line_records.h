#pragma once

#include "files/decoded_records.h"

// Decoded text with a record a line, cut as SplitLine cuts. LF ends a line; carriage returns are
// dropped, wherever they stand.
class PlainRecords final : public DecodedRecords {
public:
    PlainRecords(DecodedInput input, String encoding_name, const RecordLayout& layout);

private:
    void Begin(Content content) override;
    bool Scan(StringView unread, bool last) override;

    const char16_t delimiter_;
    const String quote_;
    StringView stripped_;  // the quote that fields lose; names keep theirs
    std::size_t scanned_ = 0;
    String line_text_;  // of a line with carriage returns in it, without them
};

// A record a line, cut into columns of fixed widths in characters (code points) and trimmed at the
// right. There is a field for each width: a short line has empty ones. Only a line without any
// character has one field. LF, CR LF and CR end a line.
class WidthRecords final : public DecodedRecords {
public:
    WidthRecords(DecodedInput input, String encoding_name, const RecordLayout& layout);

private:
    void Begin(Content content) override;
    bool Scan(StringView unread, bool last) override;
    void Cut(StringView line);

    const std::vector<std::size_t> widths_;
    std::size_t scanned_ = 0;
};
