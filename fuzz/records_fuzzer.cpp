// Any bytes as records, in all layouts and encodings. In whatever pieces they arrive, the same
// records come out.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>

#include "files/record_reader.h"

namespace {

// Gives bytes that are in memory.
class BytesInput final : public platform::InputFile {
public:
    explicit BytesInput(std::string_view bytes) : bytes_(bytes) {}
    std::optional<std::uint64_t> Size() override { return bytes_.size(); }

protected:
    std::int64_t ReadSome(std::span<std::byte> bytes) override {
        const std::size_t count = std::min(bytes.size(), bytes_.size());
        bytes_.copy(reinterpret_cast<char*>(bytes.data()), count);
        bytes_.remove_prefix(count);
        return static_cast<std::int64_t>(count);
    }

private:
    std::string_view bytes_;
};

// All that a reader tells of its records.
std::vector<String> ReadAll(std::string_view bytes, const RecordEncoding& encoding,
                            const RecordLayout& layout, std::size_t piece_bytes) {
    ErrorRecord error;
    const auto reader =
        MakeRecordReader(error, std::make_unique<BytesInput>(bytes), encoding, layout, piece_bytes);
    if (!reader) return {error.text};
    std::vector<String> told;
    auto content = RecordReader::Content::Names;
    while (reader->Read(content)) {
        content = RecordReader::Content::Data;
        String& line = told.emplace_back(1, static_cast<char16_t>(reader->Line()));
        line.append(reader->Raw()).append(reader->Fault());
        for (const RecordField& field : reader->Fields()) {
            String value;
            TakeField(field, layout.quote.empty() ? u'\0' : layout.quote[0], value);
            line.append(field.quoted ? u"|q" : u"|").append(value);
        }
    }
    told.emplace_back(1, static_cast<char16_t>(reader->Replaced()));
    return told;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider chance(data, size);
    RecordLayout layout;
    constexpr RecordLayout::Form kForms[] = {RecordLayout::Form::Plain, RecordLayout::Form::Csv,
                                             RecordLayout::Form::Widths};
    layout.form = chance.PickValueInArray(kForms);
    layout.delimiter = chance.PickValueInArray({u',', u'\t', u'\u20ac'});
    layout.quote = chance.ConsumeBool() ? u"\"" : u"";
    if (chance.ConsumeBool()) layout.comment = u'#';
    layout.widths = {2, 1, 3};
    RecordEncoding encoding;
    encoding.by = chance.PickValueInArray(
        {RecordEncoding::By::Bytes, RecordEncoding::By::Mark, RecordEncoding::By::Name});
    encoding.encoding.form = chance.PickValueInArray(
        {Encoding::Utf8, Encoding::Utf16LittleEndian, Encoding::Utf16BigEndian, Encoding::Ansi});
    const std::string bytes = chance.ConsumeRemainingBytesAsString();
    const std::vector<String> whole = ReadAll(bytes, encoding, layout, kRecordPieceBytes);
    for (const std::size_t piece : {1u, 2u, 7u}) {
        if (ReadAll(bytes, encoding, layout, piece) != whole) __builtin_trap();
    }
    return 0;
}
