// Runs of characters that are one unit in every encoding. Most text is ASCII in long runs.
#pragma once

#include <cstddef>
#include <type_traits>

// Copies the units at the start of [from, from + count) that are below the limit to `to`, each as
// one unit, and returns how many they are. Blocks are looked at and copied by plain loops over all
// of them, which the compiler does many units at a time.
template <unsigned kLimit, class From, class To>
std::size_t CopyUnitsBelow(const From* from, std::size_t count, To* to) {
    using Value = std::conditional_t<sizeof(From) == 1, unsigned char, unsigned short>;
    constexpr std::size_t kBlock = 16;
    std::size_t done = 0;
    for (; count - done >= kBlock; done += kBlock) {
        Value seen = 0;
        for (std::size_t i = 0; i < kBlock; ++i) seen = static_cast<Value>(seen | from[done + i]);
        if (seen >= kLimit) break;
        for (std::size_t i = 0; i < kBlock; ++i) to[done + i] = static_cast<To>(from[done + i]);
    }
    for (; done < count && static_cast<Value>(from[done]) < kLimit; ++done) {
        to[done] = static_cast<To>(from[done]);
    }
    return done;
}

template <class From, class To>
std::size_t CopyAscii(const From* from, std::size_t count, To* to) {
    return CopyUnitsBelow<0x80>(from, count, to);
}
