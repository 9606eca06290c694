#pragma once

#include "files/decoded_input.h"
#include "files/record_reader.h"

// What the readers share that work on decoded text: where a record begins, the count of the lines,
// comments, and bytes that are no text.
class DecodedRecords : public RecordReader {
public:
    bool Read(Content content) final;
    bool Failed() const final { return input_.Failed(); }
    StringView Raw() const final { return input_.Text().substr(start_, length_); }
    String Fault() const final;
    bool IsFaulty() const final { return fault_ != FaultKind::None; }
    std::uint64_t Replaced() const final { return input_.Replaced(); }
    bool CanReopen() const final { return input_.CanReopen(); }
    std::uint64_t ReadBytes() const final { return input_.ReadBytes(); }
    std::optional<double> Share() const final { return input_.Share(); }

protected:
    enum class FaultKind { None, BehindQuote, InsideQuotes, BeyondColumns, BadBytes };
    // What ends a line.
    enum class LineEnds {
        LineFeeds,  // LF
        All,        // LF, CR and CR LF
    };

    // encoding_name: what messages call the encoding
    DecodedRecords(DecodedInput input, String encoding_name, const RecordLayout& layout,
                   LineEnds line_ends);

    // Forgets the record before.
    virtual void Begin(Content content) = 0;
    // There is more text; the start of the record has moved.
    virtual void TextMoved(const char16_t* /*from*/, const char16_t* /*to*/) {}
    // Looks for the end of the record in what is there of it, and goes on where the last call with
    // the same record stopped. True when the record has been taken with EndAt.
    // unread: from the start of the record; it may have moved since the last call
    // last: nothing follows
    virtual bool Scan(StringView unread, bool last) = 0;

    // The record ends at this position, where a line ends or the text does.
    void EndAt(StringView unread, std::size_t length);
    void Blame(FaultKind fault) { fault_ = fault; }
    void CountLineInside() { ++lines_inside_; }
    // The first line end from `at` on; `end` when there is none.
    const char16_t* FindLineEnd(const char16_t* at, const char16_t* end) const;

private:
    bool Skip(StringView unread, bool last);
    bool IsComment(StringView unread) const;
    void LookForBadBytes();

    DecodedInput input_;
    const String encoding_name_;
    const std::optional<char16_t> comment_;
    const LineEnds line_ends_;
    bool ended_ = false;              // the input has no further piece
    bool skip_line_feed_ = false;     // the record before ended with a CR at the end of the text
    std::size_t start_ = 0;           // of the record in the text
    std::size_t length_ = 0;          // of the record
    std::size_t next_ = 0;            // where the next one begins
    std::uint64_t next_line_ = 1;     // the line of that
    std::uint64_t lines_inside_ = 0;  // line ends within the record
    std::size_t skipped_ = 0;         // how much of a comment has been looked at
    FaultKind fault_ = FaultKind::None;
    std::uint64_t bad_offset_ = 0;  // of the first bad bytes
    std::uint64_t bad_line_ = 0;
};
