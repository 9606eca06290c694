#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <vector>

#include "base/strings.h"
#include "core/place.h"

namespace Quillon {
class Logger;
}

// The name=value pairs of one section of a job file, or of the command line. Names are compared
// code unit by code unit. A hash table over elements that are kept in the order of their first
// setting.
class ParameterSet {
public:
    struct Element {
        String name;
        String value;
        Place place = {};  // where the value was written
    };

    ParameterSet() : buckets_(kInitialBuckets, kNone) {}

    // Adds the pair, or replaces the value of an existing name in place.
    void Set(StringView name, StringView value, Place place = {});
    void Set(const Element& element) { Set(element.name, element.value, element.place); }

    // The element of that name, or null. Valid as long as the set.
    const Element* Find(StringView name) const;
    // The value of that name, even when empty; `default_value` when the name is absent.
    String Get(StringView name, StringView default_value) const;

    bool Empty() const { return entries_.empty(); }
    std::size_t Size() const { return entries_.size(); }
    // The elements, in the order of their first setting; positions from 0.
    const Element& At(std::size_t position) const { return entries_[position].element; }

    // Writes one line "  prefix.name=value" for each element through `logger`. False as soon as a
    // write fails.
    // shown: what stands for an element's value; without it the value itself.
    using Shown = std::function<String(const Element& element)>;
    bool Dump(String& error, StringView prefix, Quillon::Logger& logger,
              const Shown& shown = {}) const;

private:
    static constexpr std::size_t kInitialBuckets = 8;  // always a power of two
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    struct Entry {
        Element element;
        std::uint64_t hash;
        std::size_t next;  // the next entry of the same bucket, or kNone
    };

    std::size_t IndexOf(StringView name, std::uint64_t hash) const;
    std::size_t& BucketOf(std::uint64_t hash) { return buckets_[hash & (buckets_.size() - 1)]; }
    void DoubleBuckets();

    std::deque<Entry> entries_;         // a deque, so that elements stay where they are
    std::vector<std::size_t> buckets_;  // first entry of each bucket, or kNone
};

// The boolean rule of all settings: true for exactly "1", and for "true" in any letter case.
bool IsTrue(StringView value);
