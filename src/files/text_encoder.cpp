#include "files/text_encoder.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <utility>

#include "base/narrow_run.h"
#include "base/utf8.h"
#include "files/code_page_tables.h"
#include "files/format.h"
#include "platform/code_page.h"

namespace {

constexpr char16_t kReplacement = 0xFFFD;

std::span<const std::byte> BytesBetween(const char* begin, const char* end) {
    return std::as_bytes(std::span(begin, end));
}

// Bytes that only ever grow in number, so that nothing is cleared for each text.
class Room {
public:
    char* Of(std::size_t bytes) {
        if (bytes_.size() < bytes) bytes_.resize(bytes);
        return bytes_.data();
    }

private:
    std::string bytes_;
};

class Utf8Encoder final : public TextEncoder {
public:
    bool Encode(ErrorRecord& /*error*/, StringView text,
                std::span<const std::byte>& bytes) override {
        constexpr std::size_t kMostBytes = 3;  // of a unit; a pair has four
        char* const to = room_.Of(kMostBytes * text.size());
        bytes = BytesBetween(to, EncodeUtf8(text, to, replaced_));
        return true;
    }

private:
    Room room_;
};

// UTF-16 little-endian as it is in memory, unpaired surrogates included.
class RawUtf16Encoder final : public TextEncoder {
public:
    bool Encode(ErrorRecord& /*error*/, StringView text,
                std::span<const std::byte>& bytes) override {
        bytes = std::as_bytes(std::span(text));
        return true;
    }
};

class Utf16Encoder final : public TextEncoder {
public:
    bool Encode(ErrorRecord& /*error*/, StringView text,
                std::span<const std::byte>& bytes) override {
        std::size_t position = FindUnpairedSurrogate(text);
        if (position == StringView::npos) {
            bytes = std::as_bytes(std::span(text));
            return true;
        }
        text_ = text;
        for (; position != StringView::npos; position = FindUnpairedSurrogate(text, position)) {
            text_[position++] = kReplacement;
            ++replaced_;
        }
        bytes = std::as_bytes(std::span(text_));
        return true;
    }

private:
    String text_;
};

class Utf16BigEndianEncoder final : public TextEncoder {
public:
    bool Encode(ErrorRecord& error, StringView /*text*/,
                std::span<const std::byte>& /*bytes*/) override {
        error.text = kEncodingNotSupported;
        return false;
    }
};

// One byte a unit: its low eight bits.
class CuttingEncoder final : public TextEncoder {
public:
    bool Encode(ErrorRecord& /*error*/, StringView text,
                std::span<const std::byte>& bytes) override {
        char* const to = room_.Of(text.size());
        char* const end = std::transform(text.begin(), text.end(), to, [](char16_t unit) {
            return static_cast<char>(unit & 0xFF);
        });
        bytes = BytesBetween(to, end);
        return true;
    }

private:
    Room room_;
};

// What encodings share that lack characters.
class LackingEncoder : public TextEncoder {
protected:
    LackingEncoder(const FileEncoding& encoding, Unmappable unmappable)
        : encoding_(encoding), stops_(unmappable == Unmappable::Stop) {}

    // Takes the character at `position`, which the encoding lacks. False, with a text, when the
    // text is refused; otherwise a "?" is wanted.
    bool Replace(ErrorRecord& error, StringView text, std::size_t& position) {
        const char32_t point = TakeCodePoint(text, position);
        ++replaced_;
        if (!stops_) return true;
        error.text = Format(u"Character U+%04X does not exist in the encoding %s.",
                            static_cast<std::uint32_t>(point), NameOf(encoding_));
        return false;
    }

    Room room_;

private:
    const FileEncoding encoding_;
    const bool stops_;
};

// One byte a character up to U+00FF.
class AnsiEncoder final : public LackingEncoder {
public:
    explicit AnsiEncoder(Unmappable unmappable) : LackingEncoder({}, unmappable) {}

    bool Encode(ErrorRecord& error, StringView text, std::span<const std::byte>& bytes) override {
        char* const begin = room_.Of(text.size());
        char* to = begin;
        for (std::size_t i = 0;;) {
            const std::size_t run = CopyUnitsBelow<0x100>(text.data() + i, text.size() - i, to);
            i += run;
            to += run;
            if (i == text.size()) break;
            if (!Replace(error, text, i)) return false;
            *to++ = '?';
        }
        bytes = BytesBetween(begin, to);
        return true;
    }
};

class CodePageEncoder final : public LackingEncoder {
public:
    CodePageEncoder(platform::CodePage& page, const FileEncoding& encoding, Unmappable unmappable)
        : LackingEncoder(encoding, unmappable), table_(page) {}

    bool Encode(ErrorRecord& error, StringView text, std::span<const std::byte>& bytes) override {
        char* const begin = room_.Of(platform::CodePage::kMostBytes * text.size() + kEntryBytes);
        char* to = begin;
        for (std::size_t i = 0; i < text.size();) {
            if (table_.HoldsAscii() && text[i] < 0x80) {
                const std::size_t run = CopyAscii(text.data() + i, text.size() - i, to);
                i += run;
                to += run;
                continue;
            }
            std::uint32_t entry = table_.Of(text[i]);
            if (entry != 0) {
                ++i;
            } else {
                if (!Replace(error, text, i)) return false;
                entry = table_.Of(u'?');
            }
            to = Put(entry, to);
        }
        bytes = BytesBetween(begin, to);
        return true;
    }

private:
    static constexpr std::size_t kEntryBytes = sizeof(std::uint32_t);

    // All bytes of an entry are written; those beyond its count are written over, or left out.
    static char* Put(std::uint32_t entry, char* to) {
        std::memcpy(to, &entry, kEntryBytes);
        return to + (entry >> CodePageEncodingTable::kCountShift);
    }

    const CodePageEncodingTable table_;
};

std::unique_ptr<TextEncoder> MakeCodePageEncoder(ErrorRecord& error, const FileEncoding& encoding,
                                                 Unmappable unmappable) {
    const std::unique_ptr<platform::CodePage> page = OpenCodePage(error, encoding);
    if (!page) return nullptr;
    return std::make_unique<CodePageEncoder>(*page, encoding, unmappable);
}

}  // namespace

bool KnowsEncoding(ErrorRecord& error, const FileEncoding& encoding) {
    return !encoding.code_page || OpenCodePage(error, encoding) != nullptr;
}

std::unique_ptr<TextEncoder> MakeTextEncoder(ErrorRecord& error, const FileEncoding& encoding,
                                             Unmappable unmappable) {
    if (encoding.code_page) return MakeCodePageEncoder(error, encoding, unmappable);
    const bool cuts = unmappable == Unmappable::Cut;
    switch (encoding.form) {
        case Encoding::Utf8:
            return std::make_unique<Utf8Encoder>();
        case Encoding::Utf16LittleEndian:
            if (cuts) return std::make_unique<RawUtf16Encoder>();
            return std::make_unique<Utf16Encoder>();
        case Encoding::Utf16BigEndian:
            return std::make_unique<Utf16BigEndianEncoder>();
        default:
            if (cuts) return std::make_unique<CuttingEncoder>();
            return std::make_unique<AnsiEncoder>(unmappable);
    }
}
