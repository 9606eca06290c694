#include "platform/code_page.h"

#include <windows.h>

#include <cstring>

namespace platform {
namespace {

class SystemPage final : public CodePage {
public:
    explicit SystemPage(UINT number) : number_(number) {}

    bool IsLead(std::byte byte) override {
        return ::IsDBCSLeadByteEx(number_, static_cast<BYTE>(byte)) != FALSE;
    }

    std::optional<char16_t> Character(std::span<const std::byte> bytes) override {
        wchar_t units[2] = {};
        const int count = ::MultiByteToWideChar(number_, MB_ERR_INVALID_CHARS,
                                                reinterpret_cast<const char*>(bytes.data()),
                                                static_cast<int>(bytes.size()), units, 2);
        if (count != 1) return std::nullopt;
        return static_cast<char16_t>(units[0]);
    }

    Bytes BytesOf(char16_t character) override {
        Bytes result;
        const auto unit = static_cast<wchar_t>(character);
        BOOL lacking = FALSE;
        const int count = ::WideCharToMultiByte(number_, WC_NO_BEST_FIT_CHARS, &unit, 1,
                                                reinterpret_cast<char*>(result.value.data()),
                                                static_cast<int>(kMostBytes), nullptr, &lacking);
        if (lacking == FALSE && count > 0) result.count = static_cast<std::size_t>(count);
        return result;
    }

private:
    const UINT number_;
};

}  // namespace

std::unique_ptr<CodePage> CodePage::Open(std::uint32_t number) {
    // Numbers below stand for whatever page the machine is set to.
    constexpr std::uint32_t kFirstNumber = 37;
    constexpr std::uint32_t kSymbols = 42;  // no encoding: bytes of a font
    CPINFO info{};
    if (number < kFirstNumber || number == kSymbols || ::GetCPInfo(number, &info) == FALSE ||
        info.MaxCharSize > 2) {
        return nullptr;
    }
    return std::make_unique<SystemPage>(number);
}

}  // namespace platform
