#include <gtest/gtest.h>

#include <tuple>

#include "base/utf8.h"
#include "files/text_decoder.h"
#include "files/text_encoder.h"

using namespace std::string_literals;

namespace {

constexpr FileEncoding kAnsi{Encoding::Ansi}, kUtf8{Encoding::Utf8};
constexpr FileEncoding kUtf16{Encoding::Utf16LittleEndian}, kBigEndian{Encoding::Utf16BigEndian};
const FileEncoding kThai = EncodingOfCodePage(u"CP874");
const FileEncoding kJapanese = EncodingOfCodePage(u"cp932");
const FileEncoding kEbcdic = EncodingOfCodePage(u"CP37");
const String kFill(40, u'a');  // more than a block
const std::string kNarrowFill(40, 'a');

}  // namespace

TEST(TextEncoder, PutsSomethingElseForWhatTheEncodingLacks) {
    const String pair = u"\U0001F600", half(1, 0xD83D), low(1, 0xDE00);
    const String mixed = kFill + u"\u20AC" + pair + half + u"z";
    using enum Unmappable;
    // the encoding, what it does, the text, its bytes, how many were replaced; or the refused one
    // clang-format off
    const std::tuple<FileEncoding, Unmappable, String, std::string, unsigned, String> kCases[] = {
        {kAnsi, Replace, mixed + u"\u00FF", kNarrowFill + "???z\xFF", 3, u""},
        {kAnsi, Stop, u"\u00FF" + pair, "", 1, u"Character U+1F600 does not exist in the encoding ANSI."},
        {kThai, Cut, mixed, kNarrowFill + "\x80??z", 2, u""},
        {kThai, Stop, u"\u0E01\u0141", "", 1, u"Character U+0141 does not exist in the encoding CP874."},
        {kJapanese, Replace, kFill + u"\u65E5\\\uFF76\u00C0" + low, kNarrowFill + "\x93\xFA\\\xB6??", 2, u""},
        {kEbcdic, Replace, u"a\u20AC1", "\x81\x6F\xF1", 1, u""},
        {kUtf8, Stop, half + mixed, "\xEF\xBF\xBD" + kNarrowFill + "\xE2\x82\xAC\xF0\x9F\x98\x80\xEF\xBF\xBDz", 2, u""},
        {kUtf16, Cut, half + pair, "\x3D\xD8\x3D\xD8\0\xDE"s, 0, u""},
        {kUtf16, Stop, half + pair + low, "\xFD\xFF\x3D\xD8\0\xDE\xFD\xFF"s, 2, u""},
        {kBigEndian, Stop, u"a", "", 0, kEncodingNotSupported.data()},
    };
    // clang-format on
    for (const auto& [encoding, unmappable, text, bytes, replaced, refused] : kCases) {
        SCOPED_TRACE(ToUtf8(NameOf(encoding) + u": " + text));
        ErrorRecord error;
        const auto encoder = MakeTextEncoder(error, encoding, unmappable);
        ASSERT_TRUE(encoder) << ToUtf8(error.text);
        std::span<const std::byte> made;
        EXPECT_EQ(encoder->Encode(error, text, made), refused.empty());
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(made.data()), made.size()), bytes);
        EXPECT_EQ(error.text, refused);
        EXPECT_EQ(encoder->Replaced(), replaced);
    }
}

TEST(TextDecoder, StopsAtWhatIsNoCharacterAndWaitsForTheRestOfOne) {
    // the encoding, the bytes, whether they are the last; the text, bytes taken, bytes to skip
    // clang-format off
    const std::tuple<FileEncoding, std::string, bool, String, std::size_t, std::size_t> kCases[] = {
        {kUtf8, kNarrowFill + "\xE2\x82\xAC\xFFz", false, kFill + u"\u20AC", 43, 1},
        {kUtf8, "a\xF0\x9F\x98", false, u"a", 1, 0},
        {kUtf8, "a\xF0\x9F\x98", true, u"a", 1, 3},
        {kUtf8, "\xF0\x9F(", false, u"", 0, 2},           // what stands behind it is taken up anew
        {kUtf8, "\xED\xA0\x80", false, u"", 0, 1},        // a surrogate
        {kUtf8, "\xE0\x9F", false, u"", 0, 1},            // overlong already
        {kUtf8, "\xF4\x90", false, u"", 0, 1},            // beyond the last character
        {kUtf8, "\xC0", false, u"", 0, 1},
        {kUtf16, "a\0\x3D\xD8\0\xDE"s, false, u"a\U0001F600", 6, 0},
        {kUtf16, "a\0\x3D\xD8\0"s, false, u"a", 2, 0},
        {kUtf16, "\0\xDE\x3D\xD8"s, true, u"\uFFFD\uFFFD", 4, 0},
        {kUtf16, "a\0b"s, true, u"a", 2, 1},
        {kBigEndian, "\xD8\x3D\xDE\0\xDE\0\0a"s, false, u"\U0001F600\uFFFDa", 8, 0},
        {kAnsi, "a\x80\xFF", true, u"a\u0080\u00FF", 3, 0},
        {kThai, kNarrowFill + "\xA1\xDB", false, kFill + u"\u0E01", 41, 1},
        {kJapanese, kNarrowFill + "\x93\xFA\x93", false, kFill + u"\u65E5", 42, 0},
        {kJapanese, "\x93\xFA\x93", true, u"\u65E5", 2, 1},
        {kJapanese, "\x93\nb", true, u"", 0, 1},          // the line end stays one
        {kJapanese, "\x81\xFEz", true, u"", 0, 2},
        {kEbcdic, "\x81\xF1", true, u"a1", 2, 0},
    };
    // clang-format on
    for (const auto& [encoding, bytes, last, text, taken, invalid] : kCases) {
        SCOPED_TRACE(ToUtf8(NameOf(encoding)) + ": " + testing::PrintToString(bytes));
        ErrorRecord error;
        const auto decoder = MakeTextDecoder(error, encoding);
        ASSERT_TRUE(decoder) << ToUtf8(error.text);
        String made = u"before ";
        std::size_t skipped = 99;
        const auto all = std::as_bytes(std::span(bytes));
        EXPECT_EQ(decoder->Decode(all, last, made, skipped), taken);
        EXPECT_EQ(made, u"before " + text);
        EXPECT_EQ(skipped, invalid);
    }
}

// Pages of no fixed meaning, of bytes that change the meaning of others, and of more than two.
TEST(CodePages, RefusesThoseThatTablesCannotHold) {
    for (const StringView word : {u"CP0", u"CP42", u"CP930", u"CP50220", u"CP54936", u"CP99999"}) {
        ErrorRecord error;
        EXPECT_FALSE(MakeTextDecoder(error, EncodingOfCodePage(word)));
        EXPECT_FALSE(MakeTextEncoder(error, EncodingOfCodePage(word), Unmappable::Stop));
        EXPECT_EQ(error.text, u"Encoding " + String(word) + u" is not known on this system.");
    }
}
