// Runs of units below a limit. Most text is ASCII in long runs.
#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <type_traits>

// Copies the units at the start of [from, from + count) that are below the limit to `to`, each as
// one unit, and returns how many they are. Blocks are looked at and copied by plain loops over
// copies of them, which share no memory, so that the compiler does many units at a time.
template <unsigned kLimit, class From, class To>
std::size_t CopyUnitsBelow(const From* from, std::size_t count, To* to) {
    using Value = std::conditional_t<sizeof(From) == 1, unsigned char, unsigned short>;
    constexpr std::size_t kBlock = 32;
    const auto is_below = [&](std::size_t i) { return static_cast<Value>(from[i]) < kLimit; };
    std::size_t done = 0;
    // The last unit of a block tells most blocks that hold something else.
    while (count - done >= kBlock && is_below(done + kBlock - 1)) {
        std::array<Value, kBlock> block;
        std::memcpy(block.data(), from + done, sizeof(block));
        Value seen = 0;
        for (const Value unit : block) seen = static_cast<Value>(seen | unit);
        if (seen >= kLimit) break;
        std::array<To, kBlock> copy;
        for (std::size_t i = 0; i < kBlock; ++i) copy[i] = static_cast<To>(block[i]);
        std::memcpy(to + done, copy.data(), sizeof(copy));
        done += kBlock;
    }
    for (; done < count && is_below(done); ++done) to[done] = static_cast<To>(from[done]);
    return done;
}

// How many units at the start of [from, from + count) are below the limit.
template <unsigned kLimit, class Unit>
std::size_t CountUnitsBelow(const Unit* from, std::size_t count) {
    constexpr std::size_t kBlock = 32;
    std::size_t done = 0;
    for (; count - done >= kBlock; done += kBlock) {
        unsigned short beyond = 0;
        for (std::size_t i = 0; i < kBlock; ++i) beyond |= from[done + i] >= kLimit ? 1 : 0;
        if (beyond != 0) break;
    }
    while (done < count && from[done] < kLimit) ++done;
    return done;
}

template <class From, class To>
std::size_t CopyAscii(const From* from, std::size_t count, To* to) {
    return CopyUnitsBelow<0x80>(from, count, to);
}
