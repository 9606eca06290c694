#include "files/record_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "base/utf8.h"

namespace {

using namespace std::string_literals;

using Form = RecordLayout::Form;

// A stream over bytes in memory, of no known length.
class MemoryInput final : public platform::InputFile {
public:
    explicit MemoryInput(std::string bytes) : bytes_(std::move(bytes)) {}
    std::optional<std::uint64_t> Size() override { return std::nullopt; }

protected:
    std::int64_t ReadSome(std::span<std::byte> bytes) override {
        const std::size_t count = std::min(bytes.size(), bytes_.size() - position_);
        std::memcpy(bytes.data(), bytes_.data() + position_, count);
        position_ += count;
        return static_cast<std::int64_t>(count);
    }

private:
    const std::string bytes_;
    std::size_t position_ = 0;
};

// All records as text: the line, each field ("q" in front of a quoted one, "|" behind), and behind
// "!" the fault and what would be set aside.
std::string ReadAll(const std::string& bytes, const RecordLayout& layout,
                    const RecordEncoding& encoding, std::size_t piece_bytes) {
    ErrorRecord error;
    const auto reader = MakeRecordReader(error, std::make_unique<MemoryInput>(bytes), encoding,
                                         layout, piece_bytes);
    std::string all;
    while (reader->Read(RecordReader::Content::Data)) {
        all += std::to_string(reader->Line()) + " ";
        for (const RecordField& field : reader->Fields()) {
            String text;
            TakeField(field, layout.quote.empty() ? u'\0' : layout.quote.front(), text);
            all += (field.quoted ? "q" : "") + ToUtf8(text) + "|";
        }
        if (reader->IsFaulty()) all += "!" + ToUtf8(reader->Fault() + u"!") + ToUtf8(reader->Raw());
        all += "\n";
    }
    EXPECT_FALSE(reader->Read(RecordReader::Content::Data)) << "behind the end of " << bytes;
    return all;
}

struct Case {
    std::string bytes;
    std::string records;
};

// Whatever piece of the text is read at once, the records are the same.
void ExpectEverywhere(const Case& c, const RecordLayout& layout, const RecordEncoding& encoding) {
    for (std::size_t piece = 1; piece <= c.bytes.size() + 1; ++piece) {
        ASSERT_EQ(ReadAll(c.bytes, layout, encoding, piece), c.records)
            << "pieces of " << piece << " bytes of " << c.bytes;
    }
}

TEST(RecordReader, ReadsCsvAtEverySplitOfTheText) {
    const std::string behind = "!Text stands behind the closing quote of a field.!";
    const std::string inside = "!The file ends inside a quoted field.!";
    const std::string euro = "\xE2\x82\xAC";
    const std::string grin = "\xF0\x9F\x98\x80";
    const std::string longer(70, 'x');
    const Case cases[] = {
        {"", ""},
        {"a,b\nc,d", "1 a|b|\n2 c|d|\n"},
        {"a\r\nb\rc\n\r\n\r\rd", "1 a|\n2 b|\n3 c|\n4 |\n5 |\n6 |\n7 d|\n"},
        {"a,\n,\n", "1 a||\n2 ||\n"},
        {"\"a,b\",\"c\r\nd\re\n\",\"\"\nf", "1 qa,b|qc\r\nd\re\n|q|\n5 f|\n"},
        {"\"\"\"a\"\"\",\"b\"\"c\",\"\"\"\"\n", "1 q\"a\"|qb\"c|q\"|\n"},
        // A quote is one at the start of a field alone.
        {"a\"b\",\"\nc", "1 a\"b\"|q\nc|" + inside + "a\"b\",\"\nc\n"},
        {" \"a\"\n", "1  \"a\"|\n"},
        {"\"a\"b,c\n\"d\" ,e\nf,g\n",
         "1 qa|c|" + behind + "\"a\"b,c\n2 qd|e|" + behind + "\"d\" ,e\n3 f|g|\n"},
        {"\"a", "1 qa|" + inside + "\"a\n"},
        {"\"a\"\"", "1 qa\"|" + inside + "\"a\"\"\n"},
        {"\"a\"", "1 qa|\n"},
        // Comments end with their line, whatever quotes are in it.
        {"#a\"\r\n\"#b\"\n#", "2 q#b|\n"},
        {euro + ",\"" + grin + "\"\r\n" + grin, "1 " + euro + "|q" + grin + "|\n2 " + grin + "|\n"},
        {longer + "," + longer + "\n\"" + longer + "\"\"" + longer + "\"\n",
         "1 " + longer + "|" + longer + "|\n2 q" + longer + "\"" + longer + "|\n"},
        {"a\n\"b\n\x80\",c\n\xE2\x82",
         "1 a|\n2 qb\n\xEF\xBF\xBD|c|!The bytes at offset 5 (line 3) are not valid UTF8.!\"b\n"
         "\xEF\xBF\xBD\",c\n4 \xEF\xBF\xBD|!The bytes at offset 10 (line 4) are not valid "
         "UTF8.!\xEF\xBF\xBD\n"},
        {"\xFF\xFE\"\0a\0\"\0,\0\x3D\xD8\0\xDE\n\0"s, "1 qa|" + grin + "|\n"},
        {"\xFE\xFF\0a\xD8\x3D\xDE\0\0\n\0b"s, "1 a" + grin + "|\n2 b|\n"},
    };
    const RecordLayout layout{
        .form = Form::Csv, .delimiter = u',', .quote = u"\"", .comment = u'#', .widths = {}};
    for (const Case& c : cases) ExpectEverywhere(c, layout, {RecordEncoding::By::Mark, {}});
}

TEST(RecordReader, ReadsColumnsOfFixedWidth) {
    const Case cases[] = {
        {"ab cd\nab\r\n   x\n\n", "1 ab|cd|\n2 ab||\n3 |x|\n4 |\n"},
        {"\"a\",\"b  \nabcdef \nabcdefg",
         "1 \"a\"|,\"b|\n2 abc|def|\n3 abc|def|!Text stands beyond the last column.!abcdefg\n"},
        {"\xF0\x9F\x98\x80\xC3\xA9zx", "1 \xF0\x9F\x98\x80\xC3\xA9z|x|\n"},
    };
    const RecordLayout layout{
        .form = Form::Widths, .delimiter = u',', .quote = u"\"", .comment = {}, .widths = {3, 3}};
    for (const Case& c : cases) ExpectEverywhere(c, layout, {RecordEncoding::By::Mark, {}});
}

TEST(RecordReader, ReadsPlainLinesOfAnyEncoding) {
    const Case c{"\"a;b\";c\r;\xE9\n\"d\"\"e\"\r\n", "1 qa;b|c|\xC3\xA9|\n2 qd\"\"e|\n"};
    const RecordLayout layout{
        .form = Form::Plain, .delimiter = u';', .quote = u"\"", .comment = {}, .widths = {}};
    ExpectEverywhere(c, layout, {RecordEncoding::By::Name, {.code_page = 1252}});
}

}  // namespace
