#include "platform/code_page.h"

#include <iconv.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace platform {
namespace {

// An iconv(3) conversion; closed in the end.
class Conversion {
public:
    Conversion(const std::string& to, const std::string& from)
        : descriptor_(::iconv_open(to.c_str(), from.c_str())) {}
    Conversion(const Conversion&) = delete;
    Conversion& operator=(const Conversion&) = delete;
    ~Conversion() {
        if (IsOpen()) ::iconv_close(descriptor_);
    }

    bool IsOpen() const { return descriptor_ != Invalid(); }

    // Converts one character. Returns how many bytes it became, 0 for none. `error` is then EILSEQ
    // for bytes that are no character and EINVAL for some that only begin one.
    std::size_t Convert(std::span<const std::byte> from, std::span<std::byte> to, int& error) {
        std::array<std::byte, 4> input{};
        std::memcpy(input.data(), from.data(), from.size());
        char* in = reinterpret_cast<char*>(input.data());
        char* out = reinterpret_cast<char*>(to.data());
        std::size_t in_left = from.size();
        std::size_t out_left = to.size();
        error = 0;
        // Any number but 0 is an error, or a character that merely resembles the one asked for.
        const std::size_t result = ::iconv(descriptor_, &in, &in_left, &out, &out_left);
        if (result != 0) error = result == static_cast<std::size_t>(-1) ? errno : EILSEQ;
        // Some hold a character back, to join it with an accent that may follow.
        if (error == 0) ::iconv(descriptor_, nullptr, nullptr, &out, &out_left);
        if (error != 0) ::iconv(descriptor_, nullptr, nullptr, nullptr, nullptr);
        return error == 0 ? to.size() - out_left : 0;
    }

private:
    static ::iconv_t Invalid() {
        return reinterpret_cast<::iconv_t>(-1);  // NOLINT(performance-no-int-to-ptr): iconv_open(3)
    }

    ::iconv_t descriptor_;
};

// What iconv may call a code page, likeliest first.
std::vector<std::string> NamesOf(std::uint32_t number) {
    static constexpr std::pair<std::uint32_t, const char*> kNames[] = {
        {10000, "MACINTOSH"}, {20127, "ASCII"},  {20866, "KOI8-R"}, {20936, "GB2312"},
        {21866, "KOI8-U"},    {51936, "GB2312"}, {51949, "EUC-KR"},
    };
    for (const auto& [known, name] : kNames) {
        if (known == number) return {name};
    }
    const auto text = [](std::uint32_t value) { return std::to_string(value); };
    if (number > 28590 && number < 28607) return {"ISO-8859-" + text(number - 28590)};
    if (number > 20000 && number < 21000) return {"IBM" + text(number - 20000)};  // EBCDIC
    std::string digits = text(number);
    if (digits.size() < 3) digits.insert(0, 3 - digits.size(), '0');
    return {"CP" + digits, "IBM" + digits};
}

class IconvPage final : public CodePage {
public:
    explicit IconvPage(const std::string& name)
        : decoding_("UTF-16LE", name), encoding_(name, "UTF-16LE") {}

    bool IsKnown() const { return decoding_.IsOpen() && encoding_.IsOpen(); }

    bool IsLead(std::byte byte) override {
        int error = 0;
        std::array<std::byte, 8> ignored{};
        decoding_.Convert(std::span(&byte, 1), ignored, error);
        return error == EINVAL;
    }

    std::optional<char16_t> Character(std::span<const std::byte> bytes) override {
        int error = 0;
        std::array<std::byte, 8> units{};
        if (decoding_.Convert(bytes, units, error) != sizeof(char16_t)) return std::nullopt;
        char16_t character = 0;
        std::memcpy(&character, units.data(), sizeof(character));
        return character;
    }

    Bytes BytesOf(char16_t character) override {
        int error = 0;
        std::array<std::byte, 8> bytes{};
        const std::size_t count =
            encoding_.Convert(std::as_bytes(std::span(&character, 1)), bytes, error);
        Bytes result;
        if (count > kMostBytes) return result;
        result.count = count;
        std::memcpy(result.value.data(), bytes.data(), count);
        return result;
    }

    // Whether no character is longer than two bytes and no byte only changes the meaning of others.
    bool IsOfTwoBytes() {
        for (unsigned i = 0; i < 256; ++i) {
            const auto byte = static_cast<std::byte>(i);
            int error = 0;
            std::array<std::byte, 8> units{};
            const std::size_t size = decoding_.Convert(std::span(&byte, 1), units, error);
            if (size == 0 && error == 0) return false;
            if (error == EINVAL && !EndsWithSecondByte(byte)) return false;
        }
        return true;
    }

private:
    bool EndsWithSecondByte(std::byte lead) {
        for (unsigned trail = 0; trail < 256; ++trail) {
            const std::array bytes{lead, static_cast<std::byte>(trail)};
            int error = 0;
            std::array<std::byte, 8> ignored{};
            decoding_.Convert(bytes, ignored, error);
            if (error == EINVAL) return false;
        }
        return true;
    }

    Conversion decoding_;
    Conversion encoding_;
};

}  // namespace

std::unique_ptr<CodePage> CodePage::Open(std::uint32_t number) {
    for (const std::string& name : NamesOf(number)) {
        auto page = std::make_unique<IconvPage>(name);
        if (!page->IsKnown()) continue;
        return page->IsOfTwoBytes() ? std::move(page) : nullptr;
    }
    return nullptr;
}

}  // namespace platform
