// Byte-order marks (the Unicode standard, section 23.8): the bytes at the start of a file that say
// how its text is stored.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <span>

#include "base/error_record.h"
#include "files/encoding.h"
#include "platform/file_system.h"

// The mark of an encoding, see Encoding; empty for Ansi.
std::span<const std::byte> ByteOrderMarkOf(Encoding encoding);

// The encoding whose mark begins `bytes`, of which three are enough; Ansi without one.
Encoding RecogniseByteOrderMark(std::span<const std::byte> bytes);

// Opens a file as raw bytes and recognises its mark. A UTF-16 mark stays in the stream, a UTF-8
// mark does not.
// Fails, with null, with "Could not open file for reading: " and the system's text; the code is
// kept.
// open: how the name is opened.
using FileOpener =
    std::function<std::unique_ptr<platform::InputFile>(ErrorRecord& error, const String& name)>;
std::unique_ptr<platform::InputFile> OpenByMark(ErrorRecord& error, const String& name,
                                                Encoding& encoding,
                                                const FileOpener& open = platform::InputFile::Open);
