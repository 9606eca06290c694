#include "base/utf8.h"

#include "base/narrow_run.h"

namespace {

constexpr char32_t kReplacement = 0xFFFD;

// An escaped byte, see FromNativeBytes.
bool IsEscapedByte(char32_t unit) { return unit >= 0xDC80 && unit <= 0xDCFF; }

// Writes `point` as UTF-8 and returns where it ends.
char* PutEncoded(char32_t point, char* to) {
    const auto lead = [&](unsigned mark, int shift) {
        *to++ = static_cast<char>(mark | (point >> shift));
    };
    const auto tail = [&](int shift) {
        *to++ = static_cast<char>(0x80 | ((point >> shift) & 0x3F));
    };
    if (point < 0x80) {
        lead(0, 0);
    } else if (point < 0x800) {
        lead(0xC0, 6);
        tail(0);
    } else if (point < 0x10000) {
        lead(0xE0, 12);
        tail(6);
        tail(0);
    } else {
        lead(0xF0, 18);
        tail(12);
        tail(6);
        tail(0);
    }
    return to;
}

// Writes `point` as UTF-16 and returns where it ends.
char16_t* PutUnits(char32_t point, char16_t* to) {
    if (point < 0x10000) {
        *to++ = static_cast<char16_t>(point);
        return to;
    }
    *to++ = static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10));
    *to++ = static_cast<char16_t>(0xDC00 + ((point - 0x10000) & 0x3FF));
    return to;
}

void AppendEncoded(char32_t point, std::string& bytes) {
    char room[4];
    bytes.append(room, PutEncoded(point, room));
}

void AppendUnits(char32_t point, String& text) {
    char16_t room[2];
    text.append(room, PutUnits(point, room));
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

char* EncodeUtf8(StringView text, char* to, std::uint64_t& replaced) {
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] < 0x80) {
            const std::size_t run = CopyAscii(text.data() + i, text.size() - i, to);
            i += run;
            to += run;
            continue;
        }
        char32_t point = TakeCodePoint(text, i);
        if (IsSurrogate(point)) {
            point = kReplacement;
            ++replaced;
        }
        to = PutEncoded(point, to);
    }
    return to;
}

std::size_t DecodeUtf8(std::string_view bytes, char16_t*& to) {
    std::size_t i = 0;
    while (i < bytes.size()) {
        if (static_cast<std::uint8_t>(bytes[i]) < 0x80) {
            const std::size_t run = CopyAscii(bytes.data() + i, bytes.size() - i, to);
            i += run;
            to += run;
            continue;
        }
        char32_t point = 0;
        if (!TakeSequence(bytes, i, point)) break;
        to = PutUnits(point, to);
    }
    return i;
}

std::size_t InvalidUtf8Length(std::string_view bytes, bool& cut_short) {
    const auto lead = static_cast<std::uint8_t>(bytes[0]);
    std::size_t wanted = SequenceOf(lead).length;
    if (lead < 0xC2 || lead > 0xF4) wanted = 0;  // overlong, or beyond the last character
    // The second byte alone tells overlong forms, surrogates and what is beyond the last character.
    std::uint8_t least = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    std::uint8_t most = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    std::size_t length = 1;
    while (length < wanted && length < bytes.size()) {
        const auto tail = static_cast<std::uint8_t>(bytes[length]);
        if (tail < least || tail > most) break;
        least = 0x80;
        most = 0xBF;
        ++length;
    }
    cut_short = length == bytes.size() && length < wanted;
    return length;
}

void AppendUtf8(StringView text, std::string& bytes) {
    constexpr std::size_t kMostBytes = 3;  // of a unit; a pair has four
    const std::size_t start = bytes.size();
    bytes.resize(start + kMostBytes * text.size());
    std::uint64_t replaced = 0;
    const char* const end = EncodeUtf8(text, bytes.data() + start, replaced);
    bytes.resize(static_cast<std::size_t>(end - bytes.data()));
}

std::string ToUtf8(StringView text) {
    std::string bytes;
    AppendUtf8(text, bytes);
    return bytes;
}

bool FromUtf8(std::string_view bytes, String& text) {
    text.resize(bytes.size());
    char16_t* end = text.data();
    const std::size_t taken = DecodeUtf8(bytes, end);
    text.resize(static_cast<std::size_t>(end - text.data()));
    return taken == bytes.size();
}

std::size_t FindUnpairedSurrogate(StringView text, std::size_t start) {
    constexpr unsigned kFirstSurrogate = 0xD800;  // most text lies below
    for (std::size_t i = start; i < text.size();) {
        i += CountUnitsBelow<kFirstSurrogate>(text.data() + i, text.size() - i);
        if (i == text.size()) break;
        const std::size_t position = i;
        if (IsSurrogate(TakeCodePoint(text, i))) return position;
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
