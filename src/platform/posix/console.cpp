#include "platform/console.h"

#include "base/utf8.h"
#include "platform/posix/descriptor.h"

namespace platform {

bool StandardOutputIsTerminal() { return ::isatty(STDOUT_FILENO) == 1; }

bool StandardErrorIsTerminal() { return ::isatty(STDERR_FILENO) == 1; }

bool WriteStandardOutput(std::span<const std::byte> bytes) {
    return WriteFully(STDOUT_FILENO, bytes) == bytes.size();
}

bool WriteOutputText(StringView text) {
    const std::string bytes = ToUtf8(text);
    return WriteStandardOutput(std::as_bytes(std::span(bytes)));
}

void WriteErrorText(StringView text) { WriteErrorBytes(ToUtf8(text)); }

void WriteErrorBytes(std::string_view bytes) {
    WriteFully(STDERR_FILENO, std::as_bytes(std::span(bytes)));
}

StringView LineEnd() { return u"\n"; }

}  // namespace platform
