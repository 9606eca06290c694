// Any bytes as a query file or a page. What a strict reading takes as UTF-8 is exactly what is
// there; a loose reading takes everything.
#include "base/utf8.h"
#include "files/strict_text.h"
#include "files/text_loader.h"
#include "memory_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const MemoryFile file(data, size);
    ErrorRecord error;
    String text;
    if (!LoadStrictText(error, file.Name(), text)) {
        if (error.text.empty() || !text.empty()) __builtin_trap();
    } else {
        SplitIntoLines(text);
        const std::string bytes(reinterpret_cast<const char*>(data), size);
        const bool is_marked = bytes.starts_with("\xEF\xBB\xBF") || bytes.starts_with("\xFF\xFE") ||
                               bytes.starts_with("\xFE\xFF");
        if (!is_marked && ToUtf8(text) != bytes) __builtin_trap();
    }
    std::vector<String> lines;
    LoadReport report;
    if (!LoadTextLines(error, file.Name(), lines, &report)) __builtin_trap();
    if (!LoadWholeText(error, file.Name(), text, Encoding::Ansi)) __builtin_trap();
    DecodeAfterByteOrderMark(text);
    return 0;
}
