#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "base/strings.h"
#include "files/text_writer.h"
#include "platform/file_system.h"

namespace DataConsumers {

// Where the text of a file target goes: a file or standard output.
class OutputSink {
public:
    virtual ~OutputSink() = default;

    // Writes a piece of text whole or not at all, or gathers it; a failure may be that of pieces
    // gathered before. bytes: how many have been taken; standard output counts none. `error` may
    // stay empty on failure: a notice has told of it then.
    virtual bool Write(String& error, StringView text, std::size_t& bytes) = 0;
    // Writes what has been gathered; fails as Write does.
    virtual bool Flush(String& error) = 0;
    // Ends the output; false when its last data did not arrive.
    virtual bool Close(String& error) = 0;

    // Whether the file held nothing when it was opened.
    virtual bool BeganEmpty() const { return true; }
    // Characters that the encoding lacks and that were replaced.
    virtual std::uint64_t Replaced() const = 0;
    // Bytes that were taken and have not arrived, after a failure.
    virtual std::uint64_t Lost() const = 0;
};

// How a sink tells of data that did not arrive.
enum class LossTold {
    ByNotice,  // standard error says so, and closing succeeds
    ByError,   // the operation fails with the reason
};

struct SinkPolicy {
    LossTold told = LossTold::ByNotice;
    std::size_t room = 0;  // bytes that are gathered before a write; 0: each piece is written
};

// A file that is open, as TextWriter::Begin takes it. On failure returns null and `error` holds the
// message. A terminal gets each piece at once.
std::unique_ptr<OutputSink> OpenFileSink(String& error, const String& name,
                                         std::unique_ptr<platform::OutputFile> file,
                                         const TextForm& form, bool goes_on,
                                         const SinkPolicy& policy);

// Standard output. A terminal takes characters at once, anything else bytes of the encoding,
// behind its byte-order mark where the form says so. Fails as MakeTextEncoder does.
// as_pattern: each text is a format text without arguments: "%%" stands for one percent sign.
// Fails with "Could not write to standard output: %s" where failures are told by error, otherwise
// without a word.
std::unique_ptr<OutputSink> OpenConsoleSink(String& error, const TextForm& form, bool as_pattern,
                                            const SinkPolicy& policy);

}  // namespace DataConsumers
