#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "base/error_record.h"
#include "base/strings.h"
#include "files/encoding.h"
#include "platform/file_system.h"

// Bytes that are read at once: what they decode to stays in the processor's nearer memory.
inline constexpr std::size_t kRecordPieceBytes = 65'536;

// A field of a record.
struct RecordField {
    StringView text;       // without the quotes around it
    bool quoted = false;   // quotes stood around it
    bool doubled = false;  // each quote in `text` stands twice, for one
};

// How the records of a file are laid out.
struct RecordLayout {
    enum class Form {
        Plain,   // a record a line; see SplitLine
        Csv,     // RFC 4180
        Widths,  // a record a line, cut at the widths
    };
    Form form = Form::Plain;
    char16_t delimiter = u'\t';
    String quote;                     // its first character; empty: no quotes
    std::optional<char16_t> comment;  // a line of data that begins with it is no record
    std::vector<std::size_t> widths;  // in characters (code points)
};

// How the bytes of a file become text.
struct RecordEncoding {
    enum class By {
        Bytes,  // one character a byte, or by a UTF-16 little-endian mark; nothing is invalid
        Mark,   // by the byte-order mark, which goes; without one UTF-8
        Name,   // by `encoding`; its own mark goes
    };
    By by = By::Bytes;
    FileEncoding encoding;
};

// Reads the records of a text file, or of standard input, one after the other. Memory follows the
// longest record, not the file, and a record costs no allocation once the buffers have grown.
class RecordReader {
public:
    enum class Content { Names, Data };

    virtual ~RecordReader() = default;

    // Moves on to the next record; false at the end, and where the system cannot read on. The
    // fields of the record before are then gone.
    virtual bool Read(Content content) = 0;
    // True when reading ended because the system could not read on.
    virtual bool Failed() const = 0;

    // Of the current record: its fields, at least one; the line where it began, from 1; and all of
    // its text without the line end. U+FFFD stands for invalid bytes.
    const std::vector<RecordField>& Fields() const { return fields_; }
    std::uint64_t Line() const { return line_; }
    virtual StringView Raw() const = 0;
    // What is wrong with the current record, as a sentence; empty for nothing:
    //   "Text stands behind the closing quote of a field."
    //   "The file ends inside a quoted field."
    //   "Text stands beyond the last column."
    //   "The bytes at offset %I64u (line %I64u) are not valid %s."
    virtual String Fault() const { return {}; }
    virtual bool IsFaulty() const { return false; }

    // Unpaired surrogates that became U+FFFD so far.
    virtual std::uint64_t Replaced() const = 0;
    // True when what was opened gives the same records if it is opened once more.
    virtual bool CanReopen() const = 0;
    // How many bytes of the file have been read, from its start.
    virtual std::uint64_t ReadBytes() const = 0;
    // How much of the file has been read, where its length is known.
    virtual std::optional<double> Share() const = 0;

protected:
    std::vector<RecordField> fields_;
    std::uint64_t line_ = 0;
};

// Replaces `value` with the text of a field.
// quote: of the layout.
void TakeField(const RecordField& field, char16_t quote, String& value);

// Opens a file. On failure returns null and `error` holds the message:
// "Could not open file for reading: " and the system's text, that of MakeTextDecoder, or
// "The file begins with the byte-order mark of %s, not of %s."
std::unique_ptr<RecordReader> OpenRecords(ErrorRecord& error, const String& name,
                                          const RecordEncoding& encoding,
                                          const RecordLayout& layout);

// Reads from an open stream, whose records come as they are typed or piped in.
// piece_bytes: how many bytes are read at once, at most.
std::unique_ptr<RecordReader> MakeRecordReader(ErrorRecord& error,
                                               std::unique_ptr<platform::InputFile> stream,
                                               const RecordEncoding& encoding,
                                               const RecordLayout& layout,
                                               std::size_t piece_bytes = kRecordPieceBytes);
