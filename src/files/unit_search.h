#pragma once

#include <cstddef>
#include <cstdint>

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
    // Four units from each of two places.
    UnitBlock(const char16_t* first, const char16_t* second)
        : bits_(_mm_unpacklo_epi64(Half(first), Half(second))) {}

    friend UnitBlock operator==(UnitBlock block, char16_t unit) {
        return UnitBlock(_mm_cmpeq_epi16(block.bits_, Repeat(unit)));
    }
    friend UnitBlock operator>=(UnitBlock block, char16_t unit) {
        // The difference stops at zero, which it is from `unit` up.
        const __m128i difference = _mm_subs_epu16(Repeat(unit), block.bits_);
        return UnitBlock(_mm_cmpeq_epi16(difference, _mm_setzero_si128()));
    }
    friend UnitBlock operator<=(UnitBlock block, char16_t unit) {
        // The difference stops at zero, which it is up to `unit`.
        const __m128i difference = _mm_subs_epu16(block.bits_, Repeat(unit));
        return UnitBlock(_mm_cmpeq_epi16(difference, _mm_setzero_si128()));
    }
    friend UnitBlock operator|(UnitBlock left, UnitBlock right) {
        return UnitBlock(_mm_or_si128(left.bits_, right.bits_));
    }
    // Two bits for each unit, set where a comparison holds; the first unit has the lowest.
    unsigned Mask() const { return static_cast<unsigned>(_mm_movemask_epi8(bits_)); }
    // One bit for each unit of both blocks, likewise.
    static std::uint64_t Mask(UnitBlock first, UnitBlock second) {
        const __m128i bytes = _mm_packs_epi16(first.bits_, second.bits_);
        return static_cast<std::uint16_t>(_mm_movemask_epi8(bytes));
    }

private:
    explicit UnitBlock(__m128i bits) : bits_(bits) {}
    static __m128i Half(const char16_t* at) {
        return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(at));
    }
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
    if (end - at >= UnitBlock::kUnits) {
        for (;;) {
            const unsigned mask = is_wanted(UnitBlock(at)).Mask();
            if (mask != 0) return at + std::countr_zero(mask) / 2;
            at += UnitBlock::kUnits;
            if (at == end) return end;
            // The last block reaches back over units that are known not to be wanted.
            if (end - at < UnitBlock::kUnits) at = end - UnitBlock::kUnits;
        }
    }
    constexpr std::ptrdiff_t kHalf = UnitBlock::kUnits / 2;
    if (end - at >= kHalf) {
        const unsigned mask = is_wanted(UnitBlock(at, end - kHalf)).Mask();
        if (mask == 0) return end;
        const std::ptrdiff_t found = std::countr_zero(mask) / 2;
        return found < kHalf ? at + found : end + (found - UnitBlock::kUnits);
    }
#endif
    while (at != end && !is_wanted(*at)) ++at;
    return at;
}

// Finds one wanted unit after the other in a text. What a look at many units has shown is kept for
// those that come next: short fields have several ends in one look.
class UnitScan {
public:
    // The same as FindUnit, for an `at` that never goes back. All calls between two Forgets are
    // about one text, which stays as it is but may have more behind its end, and one `is_wanted`.
    template <class Wanted>
    const char16_t* Next(const char16_t* at, const char16_t* end, const Wanted& is_wanted) {
#if defined(__SSE2__)
        if (at < reach_) {
            const std::uint64_t ahead = mask_ >> (kUnits - (reach_ - at));
            if (ahead != 0) return at + std::countr_zero(ahead);
            at = reach_;
        }
        for (; end - at >= kUnits; at += kUnits) {
            mask_ = 0;
            for (std::ptrdiff_t i = 0; i < kUnits; i += 2 * UnitBlock::kUnits) {
                const UnitBlock first = is_wanted(UnitBlock(at + i));
                const UnitBlock second = is_wanted(UnitBlock(at + i + UnitBlock::kUnits));
                mask_ |= UnitBlock::Mask(first, second) << i;
            }
            reach_ = at + kUnits;
            if (mask_ != 0) return at + std::countr_zero(mask_);
        }
#endif
        return FindUnit(at, end, is_wanted);
    }

    // The text has changed or moved.
    void Forget() { reach_ = nullptr; }

private:
    static constexpr std::ptrdiff_t kUnits = 64;

    const char16_t* reach_ = nullptr;  // the end of the units that mask_ tells of
    std::uint64_t mask_ = 0;           // a bit for each, the first has the lowest
};
