// Tables of the `Type` words that make sources, targets and transformers.
#pragma once

#include <cstddef>
#include <memory>

#include "base/strings.h"
#include "files/text.h"

template <class Base>
struct TypeWord {
    StringView word;
    std::unique_ptr<Base> (*make)();
};

template <class Base, class Derived>
std::unique_ptr<Base> MakeOf() {
    return std::make_unique<Derived>();
}

// An object of the type that the first equal word names, any letter case; null when there is none.
template <class Base, std::size_t N>
std::unique_ptr<Base> MakeByWord(const TypeWord<Base> (&table)[N], StringView word) {
    for (const TypeWord<Base>& type : table) {
        if (text::EqualsIgnoringCase(word, type.word)) return type.make();
    }
    return nullptr;
}
