// The process's standard streams. Nothing written here is translated by a C runtime: the bytes
// given are the bytes that arrive.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "base/strings.h"

namespace platform {

// True when standard output is shown to a person: a terminal, a console window.
bool StandardOutputIsTerminal();

// The same of standard error.
bool StandardErrorIsTerminal();

// Writes all of `bytes` to standard output; false when fewer arrived (a closed pipe, a full disk).
bool WriteStandardOutput(std::span<const std::byte> bytes);

// Shows `text` on standard output: as characters on a terminal, as UTF-8 when redirected.
bool WriteOutputText(StringView text);

// The same for standard error. Used for notices that must not mix with data.
void WriteErrorText(StringView text);

// Writes bytes to standard error, without taking memory.
void WriteErrorBytes(std::string_view bytes);

// The line end of this system's text: CR LF on Windows, LF elsewhere.
StringView LineEnd();

}  // namespace platform
