#include "platform/crash_line.h"

#include <algorithm>

#include "base/activity_trail.h"
#include "base/utf8.h"
#include "platform/console.h"

namespace platform {
namespace {

constexpr std::size_t kLongestState = 256;  // in UTF-16 units
constexpr std::string_view kUnknownModule = "unknown";

std::vector<LoadedModule>& Modules() {
    static std::vector<LoadedModule> modules;
    return modules;
}

std::string& Line() {
    static std::string line;
    return line;
}

std::string_view ModuleAt(std::uintptr_t address) {
    const std::vector<LoadedModule>& modules = Modules();
    const auto above = std::upper_bound(
        modules.begin(), modules.end(), address,
        [](std::uintptr_t value, const LoadedModule& module) { return value < module.address; });
    return above == modules.begin() ? kUnknownModule : std::prev(above)->name;
}

void AppendHex(std::uint64_t value, int digits, std::string& line) {
    for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4) {
        line += "0123456789ABCDEF"[(value >> shift) & 0xF];
    }
}

}  // namespace

void PrepareCrashLine(std::vector<LoadedModule> modules) {
    std::sort(modules.begin(), modules.end(),
              [](const auto& a, const auto& b) { return a.address < b.address; });
    std::size_t longest_name = kUnknownModule.size();
    for (const LoadedModule& module : modules) {
        longest_name = std::max(longest_name, module.name.size());
    }
    constexpr std::size_t kFixedTexts = 128;
    constexpr std::size_t kBytesPerUnit = 3;
    Modules() = std::move(modules);
    Line().reserve(kFixedTexts + kLongestState * kBytesPerUnit + longest_name);
    CurrentState();  // the trail makes its list when it is first asked
}

std::string_view CrashLine(std::uint32_t code, std::uintptr_t address) {
    std::string& line = Line();
    line = "Internal product error: Code = 0x";
    AppendHex(code, 8, line);
    line += ", Address = 0x";
    AppendHex(address, 16, line);
    line += " State=";
    AppendUtf8(CurrentState().substr(0, kLongestState), line);
    line += " in module=";
    line += ModuleAt(address);
    for (const char16_t unit : LineEnd()) line += static_cast<char>(unit);
    return line;
}

}  // namespace platform
