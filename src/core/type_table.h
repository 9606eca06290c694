// Tables of the `Type` words that make sources, targets and transformers.
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <vector>

#include "base/strings.h"
#include "core/key.h"
#include "files/text.h"

template <class Base>
struct TypeWord {
    StringView word;
    std::unique_ptr<Base> (*make)();
    KeyList (*keys)();
};

// What is known of a type word without making what it names.
struct TypeEntry {
    StringView word;
    KeyList (*keys)();
};

template <class Base, class Derived>
std::unique_ptr<Base> MakeOf() {
    return std::make_unique<Derived>();
}

// The row of a class that has a list of its keys.
template <class Base, class Derived>
constexpr TypeWord<Base> RowOf(StringView word) {
    return {word, MakeOf<Base, Derived>, Derived::Keys};
}

// An object of the type that the first equal word names, any letter case; null when there is none.
template <class Base, std::size_t N>
std::unique_ptr<Base> MakeByWord(const TypeWord<Base> (&table)[N], StringView word) {
    for (const TypeWord<Base>& type : table) {
        if (text::EqualsIgnoringCase(word, type.word)) return type.make();
    }
    return nullptr;
}

template <class Base, std::size_t N>
std::vector<TypeEntry> EntriesOf(const TypeWord<Base> (&table)[N]) {
    std::vector<TypeEntry> entries;
    for (const TypeWord<Base>& type : table) entries.push_back({type.word, type.keys});
    return entries;
}

// The key that every section has which a type word makes.
inline constexpr KeyTable kTypeKeys({
    {.name = u"Type", .kind = KeyKind::Type, .meaning = u"what kind it is"},
});
inline constexpr Key kType = kTypeKeys[u"Type"];
