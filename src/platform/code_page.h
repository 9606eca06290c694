#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace platform {

// What the system knows of a code page: an encoding of one to three bytes a character. Asked one
// character at a time, which is slow: tables are to be made of it.
class CodePage {
public:
    static constexpr std::size_t kMostBytes = 3;  // of a character that is written

    struct Bytes {
        std::array<std::byte, kMostBytes> value{};
        std::size_t count = 0;  // 0: the code page lacks the character
    };

    virtual ~CodePage() = default;

    // number: as Windows counts them (1252, 932, 28591). Null for one that the system does not
    // know, or whose characters have states or more than two bytes when they are read. No best fit
    // is made of a character that is not there.
    static std::unique_ptr<CodePage> Open(std::uint32_t number);

    // Whether a byte begins characters of two bytes and is none by itself.
    virtual bool IsLead(std::byte byte) = 0;
    // The character of one or two bytes; nothing when they are none.
    virtual std::optional<char16_t> Character(std::span<const std::byte> bytes) = 0;
    virtual Bytes BytesOf(char16_t character) = 0;
};

}  // namespace platform
