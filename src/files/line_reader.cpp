#include "files/line_reader.h"

#include <algorithm>
#include <utility>

#include "files/byte_order_mark.h"

namespace {

// Appends each byte as the character of its value.
void AppendWidened(RawText bytes, String& text) {
    const std::size_t start = text.size();
    text.resize(start + bytes.size());
    std::copy(bytes.begin(), bytes.end(), text.begin() + static_cast<std::ptrdiff_t>(start));
}

void AppendWithoutCarriageReturns(RawText bytes, String& text) {
    while (const unsigned char* found = FindByte(bytes, '\r')) {
        const auto length = static_cast<std::size_t>(found - bytes.data());
        AppendWidened(bytes.first(length), text);
        bytes = bytes.subspan(length + 1);
    }
    AppendWidened(bytes, text);
}

}  // namespace

bool LineReader::Open(ErrorRecord& error, const String& name) {
    Close();
    if (name.empty()) return true;
    stream_ = OpenByMark(error, name, encoding_);
    if (!stream_) return false;
    size_ = stream_->Size().value_or(0);
    buffer_ = std::make_unique_for_overwrite<std::byte[]>(kBufferBytes);
    filled_ = stream_->ReadFully({buffer_.get(), kBufferBytes});
    return true;
}

// Nothing is read yet: who types the lines is asked for them one by one.
void LineReader::OpenStandardInput(std::unique_ptr<platform::InputFile> stream) {
    Close();
    standard_input_ = true;
    buffer_ = std::make_unique_for_overwrite<std::byte[]>(kBufferBytes);
    stream_ = std::move(stream);
}

void LineReader::Close() {
    stream_.reset();
    buffer_.reset();
    filled_ = position_ = 0;
    passed_ = size_ = 0;
    standard_input_ = false;
    encoding_ = Encoding::Ansi;
}

std::optional<double> LineReader::Share() const {
    if (size_ == 0) return std::nullopt;
    const auto read = static_cast<double>(passed_ + position_);
    return std::min(1.0, read / static_cast<double>(size_));
}

RawText LineReader::Unread() const {
    return AsRawText({buffer_.get() + position_, filled_ - position_});
}

bool LineReader::ReadLine(String& line) {
    line.clear();
    if (!stream_) return false;
    if (standard_input_) return ReadInputLine(line);
    const bool wide = encoding_ == Encoding::Utf16LittleEndian;
    while (!(wide ? TakeWideLine(line) : TakeLine(line))) {
        if (filled_ < kBufferBytes) return !line.empty();  // only the file's end fills it less
        passed_ += filled_;
        filled_ = stream_->ReadFully({buffer_.get(), kBufferBytes});
        position_ = 0;
    }
    return true;
}

// Appends the buffered part of the line; true when its line feed was there.
bool LineReader::TakeLine(String& line) {
    const RawText unread = Unread();
    if (unread.empty()) return false;
    if (const unsigned char* found = FindByte(unread, '\n')) {
        const auto length = static_cast<std::size_t>(found - unread.data());
        AppendWithoutCarriageReturns(unread.first(length), line);
        position_ += length + 1;
        return true;
    }
    // The last byte stays whatever it is, see ReadLine.
    AppendWithoutCarriageReturns(unread.first(unread.size() - 1), line);
    AppendWidened(unread.last(1), line);
    position_ = filled_;
    return false;
}

bool LineReader::TakeWideLine(String& line) {
    while (position_ < filled_) {
        const char16_t unit = UnitAtStart(Unread(), true);
        position_ = std::min(position_ + 2, filled_);
        if (unit == u'\n') return true;
        if (unit != u'\r' || position_ == filled_) line.push_back(unit);
    }
    return false;
}

bool LineReader::ReadInputLine(String& line) {
    for (;;) {
        if (position_ == filled_) {
            position_ = 0;
            filled_ = stream_->Read({buffer_.get(), kBufferBytes});
            if (filled_ == 0) {
                if (!stream_->Failed()) stream_.reset();  // a terminal would be read again
                return !line.empty();
            }
        }
        RawText unread = Unread();
        const unsigned char* line_feed = FindByte(unread, '\n');
        if (line_feed != nullptr) {
            unread = unread.first(static_cast<std::size_t>(line_feed - unread.data()));
        }
        if (const unsigned char* zero = FindByte(unread, '\0')) {  // ends the input
            AppendWithoutCarriageReturns(
                unread.first(static_cast<std::size_t>(zero - unread.data())), line);
            Close();
            return !line.empty();
        }
        AppendWithoutCarriageReturns(unread, line);
        position_ += unread.size() + (line_feed != nullptr ? 1 : 0);
        if (line_feed != nullptr) return true;
    }
}
