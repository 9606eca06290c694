#pragma once

#include <cstddef>

#include "base/strings.h"

#if defined(__SSE2__)
#include <emmintrin.h>

#include <bit>
#include <cstdint>
#endif

// The first position in [at, end) whose unit is wanted; `end` when there is none.
// is_wanted: takes a unit, or eight side by side in a vector, so it is made of comparisons joined
//            by "|": [](auto unit) { return (unit == u'<') | (unit >= 128); }
// Eight units at a time where the processor can: much of a row's time goes into such searches.
template <class Wanted>
const char16_t* FindUnit(const char16_t* at, const char16_t* end, const Wanted& is_wanted) {
#if defined(__SSE2__)
    using Block = std::uint16_t __attribute__((vector_size(sizeof(__m128i))));
    for (; end - at >= 8; at += 8) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        const auto hits = std::bit_cast<__m128i>(is_wanted(std::bit_cast<Block>(block)));
        const auto mask = static_cast<unsigned>(_mm_movemask_epi8(hits));  // two bits a unit
        if (mask != 0) return at + std::countr_zero(mask) / 2;
    }
#endif
    while (at != end && !is_wanted(*at)) ++at;
    return at;
}
