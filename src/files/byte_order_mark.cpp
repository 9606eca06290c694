#include "files/byte_order_mark.h"

#include <algorithm>
#include <array>

#include "base/activity_trail.h"

namespace {

constexpr std::array<std::byte, 2> kBigEndian{std::byte{0xFE}, std::byte{0xFF}};
constexpr std::array<std::byte, 2> kLittleEndian{std::byte{0xFF}, std::byte{0xFE}};
constexpr std::array<std::byte, 3> kUtf8{std::byte{0xEF}, std::byte{0xBB}, std::byte{0xBF}};

}  // namespace

std::span<const std::byte> ByteOrderMarkOf(Encoding encoding) {
    switch (encoding) {
        case Encoding::Utf16BigEndian:
            return kBigEndian;
        case Encoding::Utf16LittleEndian:
            return kLittleEndian;
        case Encoding::Utf8:
            return kUtf8;
        case Encoding::Ansi:
            break;
    }
    return {};
}

Encoding RecogniseByteOrderMark(std::span<const std::byte> bytes) {
    for (const Encoding encoding :
         {Encoding::Utf16BigEndian, Encoding::Utf16LittleEndian, Encoding::Utf8}) {
        const std::span<const std::byte> mark = ByteOrderMarkOf(encoding);
        if (bytes.size() >= mark.size() && std::equal(mark.begin(), mark.end(), bytes.begin())) {
            return encoding;
        }
    }
    return Encoding::Ansi;
}

std::unique_ptr<platform::InputFile> OpenByMark(ErrorRecord& error, const String& name,
                                                Encoding& encoding, const FileOpener& open) {
    const ScopedState state(u"dFile::OpenFile RB");
    encoding = Encoding::Ansi;
    std::unique_ptr<platform::InputFile> stream = open(error, name);
    if (!stream) {
        error.text.insert(0, u"Could not open file for reading: ");
        return nullptr;
    }
    std::array<std::byte, 3> start{};
    const std::span<const std::byte> read = std::span(start).first(stream->ReadFully(start));
    encoding = RecogniseByteOrderMark(read);
    if (encoding != Encoding::Utf8) stream->PutBack(read);
    return stream;
}
