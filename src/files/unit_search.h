#pragma once

#include <cstddef>

#include "base/strings.h"

#if defined(__SSE2__)
#include <emmintrin.h>

#include <bit>

// Eight units side by side, compared as one.
class UnitBlock {
public:
    static constexpr std::ptrdiff_t kUnits = 8;

    explicit UnitBlock(const char16_t* at)
        : bits_(_mm_loadu_si128(reinterpret_cast<const __m128i*>(at))) {}

    friend UnitBlock operator==(UnitBlock block, char16_t unit) {
        return UnitBlock(_mm_cmpeq_epi16(block.bits_, Repeat(unit)));
    }
    friend UnitBlock operator>=(UnitBlock block, char16_t unit) {
        // The difference stops at zero, which it is from `unit` up.
        const __m128i difference = _mm_subs_epu16(Repeat(unit), block.bits_);
        return UnitBlock(_mm_cmpeq_epi16(difference, _mm_setzero_si128()));
    }
    friend UnitBlock operator<=(UnitBlock block, char16_t unit) {
        const __m128i difference = _mm_subs_epu16(block.bits_, Repeat(unit));
        return UnitBlock(_mm_cmpeq_epi16(difference, _mm_setzero_si128()));
    }
    friend UnitBlock operator|(UnitBlock left, UnitBlock right) {
        return UnitBlock(_mm_or_si128(left.bits_, right.bits_));
    }
    // Two bits for each unit, set where a comparison holds; the first unit has the lowest.
    unsigned Mask() const { return static_cast<unsigned>(_mm_movemask_epi8(bits_)); }

private:
    explicit UnitBlock(__m128i bits) : bits_(bits) {}
    static __m128i Repeat(char16_t unit) { return _mm_set1_epi16(static_cast<short>(unit)); }

    __m128i bits_;
};
#endif

// The first position in [at, end) whose unit is wanted; `end` when there is none.
// is_wanted: takes a unit, or a UnitBlock, so it is made of comparisons joined by "|":
//            [](auto unit) { return (unit == u'<') | (unit >= u'\x80'); }
// Eight units at a time where the processor can: much of a row's time goes into such searches.
template <class Wanted>
const char16_t* FindUnit(const char16_t* at, const char16_t* end, const Wanted& is_wanted) {
#if defined(__SSE2__)
    for (; end - at >= UnitBlock::kUnits; at += UnitBlock::kUnits) {
        const unsigned mask = is_wanted(UnitBlock(at)).Mask();
        if (mask != 0) return at + std::countr_zero(mask) / 2;
    }
#endif
    while (at != end && !is_wanted(*at)) ++at;
    return at;
}
