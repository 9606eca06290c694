#pragma once

#include <cstddef>
#include <memory>

#include "base/strings.h"
#include "files/text_writer.h"

namespace DataConsumers {

// Where the text of a file target goes: a file or standard output.
class OutputSink {
public:
    virtual ~OutputSink() = default;

    // Writes a piece of text whole or not at all. bytes: how many reached the file; standard output
    // counts none. `error` may stay empty on failure: a notice has told of it then.
    virtual bool Write(String& error, StringView text, std::size_t& bytes) = 0;
    // Ends the output; false when its last data did not arrive.
    virtual bool Close(String& error) = 0;

    // Whether the file held nothing when it was opened.
    virtual bool BeganEmpty() const { return true; }
    // Characters that the encoding lacks and that were replaced.
    virtual std::uint64_t Replaced() const = 0;
};

// How a sink tells of data that did not arrive.
enum class LossTold {
    ByNotice,  // standard error says so, and closing succeeds
    ByError,   // the operation fails with the reason
};

// A file, opened as TextWriter::Open does it. On failure returns null and `error` holds the
// message.
std::unique_ptr<OutputSink> OpenFileSink(String& error, const String& name, const TextForm& form,
                                         bool append, LossTold told);

// Standard output. A terminal takes characters, anything else bytes of the encoding, behind its
// byte-order mark where the form says so. Fails as MakeTextEncoder does.
// as_pattern: each text is a format text without arguments: "%%" stands for one percent sign.
std::unique_ptr<OutputSink> OpenConsoleSink(String& error, const TextForm& form, bool as_pattern);

}  // namespace DataConsumers
