#include "files/dfile.h"

#include <gtest/gtest.h>

#include <optional>
#include <tuple>

#include "support/scratch.h"

using namespace std::string_literals;
using enum Encoding;

namespace {

using Lines = std::vector<String>;
using Before = std::optional<std::string>;

constexpr std::size_t kLimit = dFile::kReadBufferBytes;
const std::string kMark = "\xEF\xBB\xBF";
const std::string kFill(kLimit - 1, 'x');
const String kFilled(kLimit - 1, u'x');
const String kWideFilled(kLimit / 2 - 2, u'\u7878');  // what kFill is in UTF-16, after the mark

struct DFile : testing::Test {
    testing_support::ScratchFolder folder_;
    String path_ = folder_.Path("file");
    ErrorRecord error_;
};

}  // namespace

TEST_F(DFile, WritesInItsEncodingAndAppendsInThatOfTheFile) {
    const String halves{0xDE00, 0xD83D, 0xDE00};
    // clang-format off
    // the file before, what is asked for, the text, the bytes it becomes, the file's encoding
    const std::tuple<Before, Encoding, String, std::string, Encoding> kCases[] = {
        {{}, Ansi, u"\u00E9\u20AC\u0100" + halves, "\xE9\xAC\0\0=\0"s, Ansi},
        {{}, Ansi, kFilled + String(u"\u20AC\0\r\n", 4), kFill + "\xAC\0\r\n"s, Ansi},
        {{}, Utf16LittleEndian, halves, "\xFF\xFE\0\xDE=\xD8\0\xDE"s, Utf16LittleEndian},
        {{}, Utf8, u"\u20AC" + halves, kMark + "\xE2\x82\xAC\xEF\xBF\xBD\xF0\x9F\x98\x80", Utf8},
        {"", Utf8, u"\u00E9", "\xE9", Ansi},  // no mark is ANSI
        {"\xEF\xBB", Utf8, u"\u00E9", "\xE9", Ansi},
        {kMark, Utf16LittleEndian, u"\u00E9", "\xC3\xA9", Utf8},
        {"\xFF\xFE" "a\0"s, Utf8, u"\u00E9", "\xE9\0"s, Utf16LittleEndian},
    };
    // clang-format on
    for (const auto& [before, asked, text, bytes, encoding] : kCases) {
        SCOPED_TRACE(testing::PrintToString(bytes.substr(0, 30)));
        folder_.Write("file", before.value_or("overwritten"));
        dFile file;
        std::size_t written = 0;
        ASSERT_TRUE(file.Open(error_, path_, asked, before.has_value()));
        EXPECT_EQ(file.CurrentEncoding(), encoding);
        EXPECT_TRUE(file.Write(error_, text, &written));
        EXPECT_TRUE(file.Close());
        EXPECT_FALSE(file.Write(error_, text));
        EXPECT_TRUE(folder_.Read("file") == before.value_or("") + bytes);
        EXPECT_EQ(written, bytes.size() - (before || asked == Ansi ? 0 : asked == Utf8 ? 3 : 2));
    }
}

TEST_F(DFile, MemoryModeKeepsTheText) {
    for (const Encoding encoding : {Utf16LittleEndian, Ansi, Utf8}) {
        dFile file;
        file.SetMemoryMode(true);
        ASSERT_TRUE(file.Open(error_, path_, encoding, true));
        EXPECT_TRUE(file.Write(error_, u"one \u20AC") && file.Write(error_, u", two"));
        const std::string bytes = "?a\0\xAC\x20\0\0b\0"s;  // not aligned, and zero ends the text
        EXPECT_TRUE(file.WriteBytes(std::as_bytes(std::span(bytes)).subspan(1)));
        EXPECT_EQ(file.MemoryText(), u"one \u20AC, twoa\u20AC");
    }
}

TEST_F(DFile, StreamsLines) {
    // clang-format off
    const std::pair<std::string, Lines> kCases[] = {
        {"a\n\n\r\nb", {u"a", u"", u"", u"b"}},
        // a carriage return is dropped unless the file ends with it
        {"a\rb\r\r\nc\n", {u"ab", u"c"}},
        {"a\nb\r\r", {u"a", u"b\r"}},
        // all else stays, one character a byte, whatever the mark of UTF-8 says
        {"a\t\t\n b\0 \n"s, {u"a\t\t", String(u" b\0 ", 4)}},
        {kMark + "\xC3\xA9\n\xFF", {u"\u00C3\u00A9", u"\u00FF"}},
        {"\xEF\xBB\nb", {u"\u00EF\u00BB", u"b"}},
        // UTF-16 little-endian in units of 16 bits, its mark in front; big-endian byte by byte
        {"\xFF\xFE" "a\0\r\0\n\0b\0\r\0"s, {u"\uFEFFa", u"b\r"}},
        {"\xFF\xFE\x0A\x01\x0D\x01\n\0\x0A\x0A"s, {u"\uFEFF\u010A\u010D", u"\u0A0A"}},
        {"\xFF\xFE" "a\0b"s, {u"\uFEFFab"}},
        {"\xFE\xFF\0a\n\0b"s, {String(u"\u00FE\u00FF\0a", 4), String(u"\0b", 2)}},
        // the end of the buffer
        {kFill + "y", {kFilled + u"y"}},
        {kFill + "\nb\n", {kFilled, u"b"}},
        {kFill + "\r", {kFilled + u"\r"}},
        {kFill + "\r\nb\r\n", {kFilled + u"\r", u"b"}},
        {kMark + kFill + "\r\nb", {kFilled + u"\r", u"b"}},
        {"\xFF\xFE" + kFill.substr(3) + "\r\0\n\0b\0"s, {u'\uFEFF' + kWideFilled + u"\r", u"b"}},
    };
    // clang-format on
    for (const auto& [bytes, expected] : kCases) {
        folder_.Write("file", bytes);
        dFile file;
        EXPECT_TRUE(file.OpenForReading(error_, path_));
        Lines lines;
        for (String line = u"old"; file.ReadLine(line);) lines.push_back(line);
        EXPECT_TRUE(lines == expected) << testing::PrintToString(bytes.substr(0, 30));
    }
}

TEST_F(DFile, LoadsLinesUntilOneComesOutEmpty) {
    // clang-format off
    // the file, its lines, the line up to which all is loaded, how many after it are left out
    const std::tuple<std::string, Lines, std::uint64_t, std::uint64_t> kCases[] = {
        // an empty line ends bare line feeds, but is a carriage return with both
        {"a\n\nb\nc\n", {u"a"}, 2, 2},
        {"a\n\n \t\r\n\n", {u"a"}, 2, 0},
        {"a\r\n\r\nb\r\n", {u"a", u"\r", u"b"}, 3, 0},
        // tabs and line ends go from the end, unless there is nothing else
        {"\ta \t\t\r\n\t\t\nb\rc\r\t\r\n", {u"\ta ", u"\t\t", u"b\rc"}, 3, 0},
        // encodings: only a mark says which
        {"\xFF\xFE\xE9\0\r\0\n\0\x0A\x01\n\0\n\0b"s, {u"\u00E9", u"\u010A"}, 3, 1},
        {"\xFE\xFF\0\xE9\0\n\x01\x0A\0\n\0\n\0a\0\n\x01"s, {u"\u00E9", u"\u010A"}, 3, 2},
        // the last byte of a UTF-8 mark leads the first line, which is then no UTF-8
        {kMark + "\xC2\xBF\n\xC2\xBF\n\xC3", {u"\u00BF\u00C2\u00BF", u"\u00BF", u"\u00C3"}, 3, 0},
        // the limit
        {kFill + "\nb\nc\n", {kFilled}, 1, 2},
        {"a\n" + kFill + "\nb", {u"a", kFilled.substr(1)}, 1, 2},  // it cuts a line
        {"a\n\nb\n" + kFill + "\nc", {u"a"}, 2, 3},               // that is left out anyway
        {"\xFF\xFE" + kFill.substr(3) + "\n\0b\0"s, {kWideFilled}, 1, 1},
    };
    // clang-format on
    for (const auto& [bytes, expected, last_line, left_out] : kCases) {
        SCOPED_TRACE(testing::PrintToString(bytes.substr(0, 30)));
        folder_.Write("file", bytes);
        Lines lines = {u"old"};
        LoadReport report;
        EXPECT_TRUE(LoadTextLines(error_, path_, lines, &report));
        EXPECT_TRUE(lines == expected);
        EXPECT_EQ(report.last_line, last_line);
        EXPECT_EQ(report.lines_left_out, left_out);
    }
    Lines none;
    EXPECT_FALSE(dFile::LoadFileContent(error_, u"", none));
    EXPECT_TRUE(error_.text.starts_with(u"Could not open file for reading: "));
}

TEST_F(DFile, LoadsAWholeTextUpToTheLimit) {
    // clang-format off
    // the file, its encoding unless a mark says another; the text, that text after
    // DecodeAfterByteOrderMark
    const std::tuple<std::string, Encoding, String, String> kCases[] = {
        {"select\r\n\n 1\t\r\n\r\n", Ansi, u"select\r\n\n 1", u"select\r\n\n 1"},
        {"\xC3\xA9\n\xC3\xA9", Utf8, u"\u00E9\n\u00E9", u"\u00E9\n\u00E9"},
        {"\xC3\xA9\n\xC3", Utf8, u"\u00C3\u00A9\n\u00C3", u"\u00C3\u00A9\n\u00C3"},
        {"\0\xE9\0a"s, Utf16BigEndian, u"\u00E9a", u"\u00E9a"},
        {"\xFF\xFE" "a\0\n\0b\0"s, Utf8, u"a\nb", u"a\nb"},
        {kMark + "\xC3\xA9", Utf16LittleEndian, u"\u00BF\u00C3\u00A9", u"\u00E9"},
        {kMark + "\xC3\xA9\xC3", Ansi, u"\u00BF\u00C3\u00A9\u00C3", u"\u00C3\u00A9\u00C3"},
        {kFill + "xyz", Ansi, kFilled + u"x", kFilled + u"x"},
        {kMark + kFill, Ansi, u'\u00BF' + kFilled.substr(2), kFilled.substr(2)},
        {"\xFF\xFE" + kFill, Ansi, kWideFilled + u"\u7878", kWideFilled + u"\u7878"},
    };
    // clang-format on
    for (const auto& [bytes, default_encoding, expected, decoded] : kCases) {
        folder_.Write("file", bytes);
        String text = u"old";
        EXPECT_TRUE(dFile::PrepareLoadFileContent(error_, path_, text, default_encoding));
        SCOPED_TRACE(testing::PrintToString(bytes.substr(0, 30)));
        EXPECT_TRUE(text == expected);
        DecodeAfterByteOrderMark(text);
        EXPECT_TRUE(text == decoded);
    }
}
