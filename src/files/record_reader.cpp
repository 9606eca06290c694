#include "files/record_reader.h"

#include <array>
#include <optional>
#include <utility>

#include "files/byte_order_mark.h"
#include "files/csv_records.h"
#include "files/format.h"
#include "files/line_reader.h"
#include "files/line_records.h"
#include "files/line_splitter.h"
#include "files/unit_search.h"

namespace {

// Lines as LineReader reads them, cut as SplitLine cuts: nothing in them is invalid.
class ByteLines final : public RecordReader {
public:
    explicit ByteLines(const RecordLayout& layout)
        : delimiter_(layout.delimiter), quote_(layout.quote), comment_(layout.comment) {}

    bool Open(ErrorRecord& error, const String& name) { return reader_.Open(error, name); }
    void Open(std::unique_ptr<platform::InputFile> stream) {
        reader_.OpenStandardInput(std::move(stream));
    }

    bool Read(Content content) override {
        fields_.clear();
        do {
            ++line_;
            if (!reader_.ReadLine(text_)) return false;
        } while (content == Content::Data && comment_ && text_.starts_with(*comment_));
        // Names keep the quotes around them.
        const StringView stripped = content == Content::Data ? StringView{quote_} : StringView{};
        SplitLine(text_, delimiter_, quote_, [&](StringView field) {
            const StringView bare = StripOuterQuotes(field, stripped);
            fields_.push_back({bare, bare.size() != field.size()});
        });
        return true;
    }

    bool Failed() const override { return reader_.Failed(); }
    StringView Raw() const override { return text_; }
    std::uint64_t Replaced() const override { return 0; }
    bool CanReopen() const override { return reader_.CanReopen(); }
    // A file is read by the buffer, and what is shorter as soon as it is opened.
    std::uint64_t ReadBytes() const override { return LineReader::kBufferBytes; }
    std::optional<double> Share() const override { return reader_.Share(); }

private:
    const char16_t delimiter_;
    const String quote_;
    const std::optional<char16_t> comment_;
    LineReader reader_;
    String text_;
};

// What a stream's mark says, with the mark taken off. `skipped` is its length. Nothing, with
// `error`, where it contradicts the job.
std::optional<FileEncoding> TakeMark(ErrorRecord& error, platform::InputFile& stream,
                                     const RecordEncoding& wanted, std::size_t& skipped) {
    using By = RecordEncoding::By;
    skipped = 0;
    std::array<std::byte, 3> start{};
    const std::span<const std::byte> read = std::span(start).first(stream.ReadFully(start));
    const Encoding marked = RecogniseByteOrderMark(read);
    const bool named = wanted.by == By::Name;
    const bool own = named && !wanted.encoding.code_page && marked == wanted.encoding.form;
    const bool taken =
        wanted.by == By::Mark || own || (wanted.by == By::Bytes && marked == Encoding::Utf8);
    if (taken) skipped = ByteOrderMarkOf(marked).size();
    stream.PutBack(read.subspan(skipped));
    if (named && !wanted.encoding.code_page && !own && marked != Encoding::Ansi) {
        error.text = Format(u"The file begins with the byte-order mark of %s, not of %s.",
                            NameOf({.form = marked}), NameOf(wanted.encoding));
        return std::nullopt;
    }
    if (named) return wanted.encoding;
    if (wanted.by == By::Bytes) {
        const bool wide = marked == Encoding::Utf16LittleEndian;
        return FileEncoding{.form = wide ? marked : Encoding::Ansi};
    }
    return FileEncoding{.form = marked == Encoding::Ansi ? Encoding::Utf8 : marked};
}

}  // namespace

void TakeField(const RecordField& field, char16_t quote, String& value) {
    value.clear();
    if (!field.doubled) {
        value.append(field.text);  // dearer with assign
        return;
    }
    const char16_t* at = field.text.data();
    const char16_t* const end = at + field.text.size();
    while (at != end) {
        const char16_t* found = FindUnit(at, end, [=](auto unit) { return unit == quote; });
        if (found != end) ++found;  // the first of the two stays
        value.append(at, found);
        at = found == end ? end : found + 1;
    }
}

std::unique_ptr<RecordReader> MakeRecordReader(ErrorRecord& error,
                                               std::unique_ptr<platform::InputFile> stream,
                                               const RecordEncoding& encoding,
                                               const RecordLayout& layout,
                                               std::size_t piece_bytes) {
    using Form = RecordLayout::Form;
    if (layout.form == Form::Plain && encoding.by == RecordEncoding::By::Bytes) {
        auto lines = std::make_unique<ByteLines>(layout);
        lines->Open(std::move(stream));
        return lines;
    }
    std::size_t skipped = 0;
    const std::optional<FileEncoding> taken = TakeMark(error, *stream, encoding, skipped);
    if (!taken) return nullptr;
    const FileEncoding& found = *taken;
    std::unique_ptr<TextDecoder> decoder = MakeTextDecoder(error, found);
    if (!decoder) return nullptr;
    DecodedInput input(std::move(stream), std::move(decoder), skipped, piece_bytes);
    switch (layout.form) {
        case Form::Csv:
            return std::make_unique<CsvRecords>(std::move(input), NameOf(found), layout);
        case Form::Widths:
            return std::make_unique<WidthRecords>(std::move(input), NameOf(found), layout);
        case Form::Plain:
            break;
    }
    return std::make_unique<PlainRecords>(std::move(input), NameOf(found), layout);
}

std::unique_ptr<RecordReader> OpenRecords(ErrorRecord& error, const String& name,
                                          const RecordEncoding& encoding,
                                          const RecordLayout& layout) {
    if (layout.form == RecordLayout::Form::Plain && encoding.by == RecordEncoding::By::Bytes) {
        auto lines = std::make_unique<ByteLines>(layout);
        return lines->Open(error, name) ? std::move(lines) : nullptr;
    }
    std::unique_ptr<platform::InputFile> stream = platform::InputFile::Open(error, name);
    if (!stream) {
        error.text.insert(0, u"Could not open file for reading: ");
        return nullptr;
    }
    return MakeRecordReader(error, std::move(stream), encoding, layout);
}
