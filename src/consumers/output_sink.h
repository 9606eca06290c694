#pragma once

#include <cstddef>
#include <memory>

#include "base/strings.h"
#include "files/encoding.h"

namespace DataConsumers {

// Where the text of a file target goes: a file or standard output.
class OutputSink {
public:
    virtual ~OutputSink() = default;

    // Writes a piece of text whole or not at all. bytes: how many reached the file; standard output
    // counts none. `error` may stay empty on failure: a notice has told of it then.
    virtual bool Write(String& error, StringView text, std::size_t& bytes) = 0;
    // Whether it held nothing when it was opened.
    virtual bool BeganEmpty() const { return true; }
    // Ends the output; false when its last data did not arrive.
    virtual bool Close(String& error) = 0;
};

// How a sink tells of data that did not arrive.
enum class LossTold {
    ByNotice,  // standard error says so, and closing succeeds
    ByError,   // the operation fails with the reason
};

// A file, opened as TextWriter::Open does it. On failure returns null and `error` holds the
// message.
// marked: a new file begins with the byte-order mark of the encoding.
std::unique_ptr<OutputSink> OpenFileSink(String& error, const String& name, Encoding encoding,
                                         bool marked, bool append, LossTold told);

// Standard output. A terminal takes characters, anything else bytes of the encoding without a
// byte-order mark.
// as_pattern: each text is a format text without arguments: "%%" stands for one percent sign.
std::unique_ptr<OutputSink> OpenConsoleSink(Encoding encoding, bool as_pattern);

}  // namespace DataConsumers
