#include "platform/console.h"

#include <windows.h>

#include <algorithm>

#include "base/utf8.h"
#include "platform/windows/handle.h"
#include "platform/windows/wide.h"

namespace platform {
namespace {

bool IsConsole(HANDLE stream) {
    DWORD mode = 0;
    return ::GetConsoleMode(stream, &mode) != FALSE;
}

// The console takes a limited amount a call; 8 Ki characters are always accepted.
bool WriteToConsole(HANDLE console, StringView text) {
    constexpr std::size_t kMostPerCall = 8192;
    while (!text.empty()) {
        StringView part = text.substr(0, kMostPerCall);
        const bool splits_pair = part.size() < text.size() && (part.back() & 0xFC00) == 0xD800;
        if (splits_pair) part.remove_suffix(1);
        DWORD written = 0;
        if (::WriteConsoleW(console, part.data(), static_cast<DWORD>(part.size()), &written,
                            nullptr) == FALSE ||
            written == 0) {
            return false;
        }
        text.remove_prefix(written);
    }
    return true;
}

bool WriteText(HANDLE stream, StringView text) {
    if (IsConsole(stream)) return WriteToConsole(stream, text);
    const std::string bytes = ToUtf8(text);
    return WriteFully(stream, std::as_bytes(std::span(bytes))) == bytes.size();
}

}  // namespace

bool StandardOutputIsTerminal() { return IsConsole(::GetStdHandle(STD_OUTPUT_HANDLE)); }

bool StandardErrorIsTerminal() { return IsConsole(::GetStdHandle(STD_ERROR_HANDLE)); }

bool WriteStandardOutput(std::span<const std::byte> bytes) {
    return WriteFully(::GetStdHandle(STD_OUTPUT_HANDLE), bytes) == bytes.size();
}

bool WriteOutputText(StringView text) { return WriteText(::GetStdHandle(STD_OUTPUT_HANDLE), text); }

void WriteErrorText(StringView text) { WriteText(::GetStdHandle(STD_ERROR_HANDLE), text); }

void WriteErrorBytes(std::string_view bytes) {
    WriteFully(::GetStdHandle(STD_ERROR_HANDLE), std::as_bytes(std::span(bytes)));
}

StringView LineEnd() { return u"\r\n"; }

}  // namespace platform
