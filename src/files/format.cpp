#include "files/format.h"

#include <array>
#include <cstdio>
#include <string>

#include "files/text.h"

namespace format_detail {
namespace {

// The C library formats a single number; `length` is its size prefix for 64-bit numbers.
template <class Number>
String FormatNumber(const Directive& directive, const char* length, Number number) {
    std::string pattern = "%";
    for (const char16_t unit : directive.options) pattern.push_back(static_cast<char>(unit));
    pattern += length;
    pattern.push_back(static_cast<char>(directive.conversion));
    std::array<char, 400> buffer{};  // DBL_MAX has 309 digits
    const int written = std::snprintf(buffer.data(), buffer.size(), pattern.c_str(), number);
    return text::Widen({buffer.data(), static_cast<std::size_t>(written)});
}

void AppendArgument(String& result, const Directive& directive, const Argument& argument) {
    switch (argument.GetKind()) {
        case Kind::Text:
            result += argument.Text();
            break;
        case Kind::Integer:
            result += FormatNumber(directive, "ll", static_cast<long long>(argument.Integer()));
            break;
        case Kind::Real:
            result += FormatNumber(directive, "", argument.Real());
            break;
    }
}

}  // namespace

String Expand(StringView pattern, std::initializer_list<Argument> arguments) {
    String result;
    const Argument* next = arguments.begin();
    while (!pattern.empty()) {
        const std::size_t percent = std::min(pattern.find(u'%'), pattern.size());
        result += pattern.substr(0, percent);
        pattern.remove_prefix(percent);
        if (pattern.empty()) break;
        const Directive directive = ParseDirective(pattern);
        pattern.remove_prefix(directive.length);
        if (directive.conversion == u'%') {
            result += u'%';
        } else {
            AppendArgument(result, directive, *next++);
        }
    }
    return result;
}

}  // namespace format_detail
