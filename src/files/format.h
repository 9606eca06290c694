// printf-style message texts over UTF-16. The pattern is checked against the arguments when the
// program is compiled, so a message cannot take what it was not given.
#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <type_traits>

#include "base/strings.h"

namespace format_detail {

// Patterns take: %s text; %d and %u whole numbers; %I64u 64-bit; %X and %f (with flags, width and
// precision); %% a percent sign.
enum class Kind { Text, Integer, Real };

class Argument {
public:
    Argument(StringView value) : kind_(Kind::Text), text_(value) {}
    template <std::integral T>
    Argument(T value) : kind_(Kind::Integer), integer_(static_cast<std::int64_t>(value)) {}
    Argument(double value) : kind_(Kind::Real), real_(value) {}

    Kind GetKind() const { return kind_; }
    StringView Text() const { return text_; }
    std::int64_t Integer() const { return integer_; }
    double Real() const { return real_; }

private:
    Kind kind_;
    StringView text_;
    std::int64_t integer_ = 0;
    double real_ = 0;
};

template <class T>
constexpr Kind KindOf() {
    if constexpr (std::is_convertible_v<T, StringView>)
        return Kind::Text;
    else if constexpr (std::is_integral_v<std::remove_cvref_t<T>>)
        return Kind::Integer;
    else
        return Kind::Real;
}

// One directive of a pattern: "%", flags, width and precision, "I64", conversion.
struct Directive {
    StringView options;       // what stands between "%" and the conversion, less "I64"
    char16_t conversion = 0;  // 0 at the end of a pattern
    std::size_t length = 0;   // of the whole directive, the percent sign included
};

// Reads the directive at the start of `pattern`, which begins with "%".
constexpr Directive ParseDirective(StringView pattern) {
    std::size_t end = 1;
    while (end < pattern.size() &&
           StringView(u"0123456789.-+ #").find(pattern[end]) != StringView::npos)
        ++end;
    Directive directive;
    directive.options = pattern.substr(1, end - 1);
    if (pattern.substr(end).starts_with(u"I64")) end += 3;
    if (end < pattern.size()) directive.conversion = pattern[end++];
    directive.length = end;
    return directive;
}

constexpr Kind KindOfConversion(char16_t conversion) {
    switch (conversion) {
        case u's':
            return Kind::Text;
        case u'd':
        case u'u':
        case u'X':
            return Kind::Integer;
        case u'f':
            return Kind::Real;
        default:
            throw "this conversion is not supported";  // ends the compilation
    }
}

template <class... Arguments>
class Pattern {
public:
    template <std::size_t N>
    consteval Pattern(const char16_t (&text)[N]) : text_(text, N - 1) {
        Check();
    }
    constexpr StringView Text() const { return text_; }

private:
    consteval void Check() const {
        const std::array<Kind, sizeof...(Arguments)> kinds{KindOf<Arguments>()...};
        std::size_t used = 0;
        for (StringView rest = text_; rest.find(u'%') != StringView::npos;) {
            rest.remove_prefix(rest.find(u'%'));
            const Directive directive = ParseDirective(rest);
            rest.remove_prefix(directive.length);
            if (directive.conversion == u'%') continue;
            if (used == kinds.size()) throw "the message wants more arguments";
            if (kinds[used] != KindOfConversion(directive.conversion))
                throw "an argument has the wrong type";
            ++used;
        }
        if (used != kinds.size()) throw "the message wants fewer arguments";
    }

    StringView text_;
};

String Expand(StringView pattern, std::initializer_list<Argument> arguments);

}  // namespace format_detail

// Format(u"Incorrect type for target '%s'.", type)
template <class... Arguments>
String Format(format_detail::Pattern<std::type_identity_t<Arguments>...> pattern,
              const Arguments&... arguments) {
    return format_detail::Expand(pattern.Text(), {format_detail::Argument(arguments)...});
}
