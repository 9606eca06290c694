#include "base/utf8.h"

#include <algorithm>
#include <cstdint>
#include <type_traits>

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }
bool IsSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDFFF; }

// An escaped byte, see FromNativeBytes.
bool IsEscapedByte(char32_t unit) { return unit >= 0xDC80 && unit <= 0xDCFF; }

// Takes the code point at `position` and moves past it; an unpaired surrogate comes out as itself.
char32_t TakeCodePoint(StringView text, std::size_t& position) {
    const char32_t unit = text[position++];
    if (IsHighSurrogate(unit) && position < text.size() && IsLowSurrogate(text[position])) {
        const char32_t low = text[position++];
        return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
    }
    return unit;
}

// How many ASCII characters `text` begins with. Most text is ASCII in long runs: a block is looked
// at by a plain loop over all of it, which the compiler does many characters at a time.
template <class Unit>
std::size_t AsciiLength(std::basic_string_view<Unit> text) {
    constexpr std::size_t kBlock = 32;
    using Value = std::make_unsigned_t<std::conditional_t<sizeof(Unit) == 1, char, short>>;
    const auto is_ascii = [](Unit unit) { return static_cast<Value>(unit) < 0x80; };
    std::size_t length = 0;
    while (text.size() - length >= kBlock) {
        const Unit* const block = text.data() + length;
        Value seen = 0;
        for (std::size_t i = 0; i < kBlock; ++i) seen = static_cast<Value>(seen | block[i]);
        if (seen >= 0x80) break;
        length += kBlock;
    }
    while (length < text.size() && is_ascii(text[length])) ++length;
    return length;
}

// Takes the ASCII characters at `position` over as they are and moves past them.
template <class From, class To>
void TakeAscii(std::basic_string_view<From> from, std::size_t& position, To& to) {
    const std::basic_string_view<From> run =
        from.substr(position, AsciiLength(from.substr(position)));
    const std::size_t start = to.size();
    to.resize(start + run.size());
    std::transform(run.begin(), run.end(), to.begin() + static_cast<std::ptrdiff_t>(start),
                   [](From unit) { return static_cast<typename To::value_type>(unit); });
    position += run.size();
}

void AppendEncoded(char32_t point, std::string& bytes) {
    const auto tail = [&](int shift) {
        bytes.push_back(static_cast<char>(0x80 | ((point >> shift) & 0x3F)));
    };
    if (point < 0x80) {
        bytes.push_back(static_cast<char>(point));
    } else if (point < 0x800) {
        bytes.push_back(static_cast<char>(0xC0 | (point >> 6)));
        tail(0);
    } else if (point < 0x10000) {
        bytes.push_back(static_cast<char>(0xE0 | (point >> 12)));
        tail(6);
        tail(0);
    } else {
        bytes.push_back(static_cast<char>(0xF0 | (point >> 18)));
        tail(12);
        tail(6);
        tail(0);
    }
}

void AppendUnits(char32_t point, String& text) {
    if (point < 0x10000) {
        text.push_back(static_cast<char16_t>(point));
        return;
    }
    text.push_back(static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10)));
    text.push_back(static_cast<char16_t>(0xDC00 + ((point - 0x10000) & 0x3FF)));
}

struct Sequence {
    std::size_t length;  // bytes, 0 for a byte that cannot begin a sequence
    char32_t lead_bits;  // what the first byte contributes
    char32_t least;      // anything below is an overlong form
};

Sequence SequenceOf(std::uint8_t lead) {
    if (lead < 0x80) return {1, lead, 0};
    if ((lead & 0xE0) == 0xC0) return {2, static_cast<char32_t>(lead & 0x1F), 0x80};
    if ((lead & 0xF0) == 0xE0) return {3, static_cast<char32_t>(lead & 0x0F), 0x800};
    if ((lead & 0xF8) == 0xF0) return {4, static_cast<char32_t>(lead & 0x07), 0x10000};
    return {0, 0, 0};
}

// Takes the sequence at `position` and moves past it; false, without moving, when it is invalid.
bool TakeSequence(std::string_view bytes, std::size_t& position, char32_t& point) {
    const Sequence sequence = SequenceOf(static_cast<std::uint8_t>(bytes[position]));
    if (sequence.length == 0 || bytes.size() - position < sequence.length) return false;
    point = sequence.lead_bits;
    for (std::size_t i = 1; i < sequence.length; ++i) {
        const auto tail = static_cast<std::uint8_t>(bytes[position + i]);
        if ((tail & 0xC0) != 0x80) return false;
        point = (point << 6) | (tail & 0x3Fu);
    }
    if (point < sequence.least || point > 0x10FFFF || IsSurrogate(point)) return false;
    position += sequence.length;
    return true;
}

}  // namespace

void AppendUtf8(StringView text, std::string& bytes) {
    bytes.reserve(bytes.size() + text.size());
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] < 0x80) {
            TakeAscii(text, i, bytes);
            continue;
        }
        const char32_t point = TakeCodePoint(text, i);
        AppendEncoded(IsSurrogate(point) ? kReplacement : point, bytes);
    }
}

std::string ToUtf8(StringView text) {
    std::string bytes;
    AppendUtf8(text, bytes);
    return bytes;
}

bool FromUtf8(std::string_view bytes, String& text) {
    text.clear();
    text.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size();) {
        if (static_cast<std::uint8_t>(bytes[i]) < 0x80) {
            TakeAscii(bytes, i, text);
            continue;
        }
        char32_t point = 0;
        if (!TakeSequence(bytes, i, point)) return false;
        AppendUnits(point, text);
    }
    return true;
}

std::size_t FindUnpairedSurrogate(StringView text) {
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t start = i;
        if (IsSurrogate(TakeCodePoint(text, i))) return start;
    }
    return StringView::npos;
}

String FromNativeBytes(std::string_view bytes) {
    String text;
    for (std::size_t i = 0; i < bytes.size();) {
        char32_t point = 0;
        if (!TakeSequence(bytes, i, point)) {
            point = 0xDC00u + static_cast<std::uint8_t>(bytes[i++]);
        }
        AppendUnits(point, text);
    }
    return text;
}

std::string ToNativeBytes(StringView text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size();) {
        const char32_t point = TakeCodePoint(text, i);
        if (IsEscapedByte(point)) {
            bytes.push_back(static_cast<char>(point - 0xDC00));
        } else {
            AppendEncoded(IsSurrogate(point) ? kReplacement : point, bytes);
        }
    }
    return bytes;
}
