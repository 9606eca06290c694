#include "files/text_decoder.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "base/narrow_run.h"
#include "base/utf8.h"
#include "files/code_page_tables.h"
#include "files/raw_text.h"
#include "platform/code_page.h"

namespace {

constexpr char16_t kReplacement = 0xFFFD;

// Room behind a text for a decoder to write to; in the end the text has what was written.
class Tail {
public:
    Tail(String& text, std::size_t units) : text_(text), start_(text.size()) {
        text_.resize(start_ + units);
        at = text_.data() + start_;
    }
    Tail(const Tail&) = delete;
    Tail& operator=(const Tail&) = delete;
    ~Tail() { text_.resize(static_cast<std::size_t>(at - text_.data())); }

    char16_t* at;  // where the next unit goes

private:
    String& text_;
    const std::size_t start_;
};

class Utf8Decoder final : public TextDecoder {
public:
    std::size_t Decode(std::span<const std::byte> bytes, bool last, String& text,
                       std::size_t& invalid) override {
        const std::string_view narrow(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        Tail tail(text, bytes.size());
        const std::size_t taken = DecodeUtf8(narrow, tail.at);
        invalid = 0;
        if (taken == bytes.size()) return taken;
        bool cut_short = false;
        const std::size_t length = InvalidUtf8Length(narrow.substr(taken), cut_short);
        if (last || !cut_short) invalid = length;
        return taken;
    }
};

class Utf16Decoder final : public TextDecoder {
public:
    explicit Utf16Decoder(bool little_endian) : little_endian_(little_endian) {}

    std::size_t Decode(std::span<const std::byte> bytes, bool last, String& text,
                       std::size_t& invalid) override {
        const std::size_t count = bytes.size() / sizeof(char16_t);
        const std::size_t start = text.size();
        text.resize(start + count);
        char16_t* const units = text.data() + start;
        if (count != 0) std::memcpy(units, bytes.data(), count * sizeof(char16_t));
        if (!little_endian_) {
            std::transform(units, units + count, units, [](char16_t unit) {
                return static_cast<char16_t>(unit << 8 | unit >> 8);
            });
        }
        const std::size_t kept = ReplaceUnpaired({units, count}, units, last);
        text.resize(start + kept);
        const std::size_t rest = bytes.size() - kept * sizeof(char16_t);
        invalid = last ? rest : 0;
        return bytes.size() - rest;
    }

private:
    // Returns how many units make whole characters: all but a first half of a pair at the end,
    // unless it is the last.
    std::size_t ReplaceUnpaired(StringView text, char16_t* units, bool last) {
        for (std::size_t i = 0; (i = FindUnpairedSurrogate(text, i)) != StringView::npos; ++i) {
            const bool may_go_on = i + 1 == text.size() && text[i] < 0xDC00;
            if (may_go_on && !last) return i;
            units[i] = kReplacement;
            ++replaced_;
        }
        return text.size();
    }

    const bool little_endian_;
};

// Each byte is the character of its value.
class AnsiDecoder final : public TextDecoder {
public:
    std::size_t Decode(std::span<const std::byte> bytes, bool /*last*/, String& text,
                       std::size_t& invalid) override {
        const RawText raw = AsRawText(bytes);
        Tail tail(text, raw.size());
        tail.at = std::copy(raw.begin(), raw.end(), tail.at);
        invalid = 0;
        return bytes.size();
    }
};

class CodePageDecoder final : public TextDecoder {
public:
    explicit CodePageDecoder(platform::CodePage& page) : table_(page) {}

    std::size_t Decode(std::span<const std::byte> bytes, bool last, String& text,
                       std::size_t& invalid) override {
        const RawText raw = AsRawText(bytes);
        Tail tail(text, raw.size());
        std::size_t i = 0;
        invalid = 0;
        while (i < raw.size()) {
            if (table_.HoldsAscii() && raw[i] < 0x80) {
                const std::size_t run = CopyAscii(raw.data() + i, raw.size() - i, tail.at);
                i += run;
                tail.at += run;
                continue;
            }
            const std::size_t length = Take(raw.subspan(i), last, tail.at, invalid);
            if (length == 0) break;
            i += length;
        }
        return i;
    }

private:
    // Takes the character at the start of `raw` and returns how many bytes it has; 0 when there is
    // none.
    std::size_t Take(RawText raw, bool last, char16_t*& to, std::size_t& invalid) const {
        char16_t unit = table_.Of(raw[0]);
        std::size_t length = 1;
        if (unit == CodePageDecodingTable::kLead) {
            if (raw.size() == 1) {
                invalid = last ? 1 : 0;
                return 0;
            }
            unit = table_.Of(raw[0], raw[1]);
            length = 2;
        }
        if (unit == CodePageDecodingTable::kNothing) {
            // What is ASCII by itself does not go with the byte before it: it may end a line.
            const bool second_stands = length == 2 && raw[1] < 0x80;
            invalid = second_stands ? 1 : length;
            return 0;
        }
        *to++ = unit;
        return length;
    }

    const CodePageDecodingTable table_;
};

}  // namespace

std::unique_ptr<TextDecoder> MakeTextDecoder(ErrorRecord& error, const FileEncoding& encoding) {
    if (encoding.code_page) {
        const std::unique_ptr<platform::CodePage> page = OpenCodePage(error, encoding);
        if (!page) return nullptr;
        return std::make_unique<CodePageDecoder>(*page);
    }
    switch (encoding.form) {
        case Encoding::Utf8:
            return std::make_unique<Utf8Decoder>();
        case Encoding::Utf16LittleEndian:
        case Encoding::Utf16BigEndian:
            return std::make_unique<Utf16Decoder>(encoding.form == Encoding::Utf16LittleEndian);
        default:
            return std::make_unique<AnsiDecoder>();
    }
}
