#include "core/parameter_set.h"

#include "core/logger.h"
#include "files/format.h"
#include "files/text.h"

namespace {

// 64-bit FNV-1a over the bytes of the UTF-16 code units, low byte first.
std::uint64_t Hash(StringView name) {
    constexpr std::uint64_t kOffsetBasis = 14695981039346656037ULL;
    constexpr std::uint64_t kPrime = 1099511628211ULL;
    std::uint64_t hash = kOffsetBasis;
    for (const char16_t unit : name) {
        hash = (hash ^ (unit & 0xFFu)) * kPrime;
        hash = (hash ^ (unit >> 8u)) * kPrime;
    }
    return hash;
}

}  // namespace

std::size_t ParameterSet::IndexOf(StringView name, std::uint64_t hash) const {
    std::size_t index = buckets_[hash & (buckets_.size() - 1)];
    while (index != kNone && entries_[index].element.name != name) index = entries_[index].next;
    return index;
}

void ParameterSet::Set(StringView name, StringView value, Place place) {
    const std::uint64_t hash = Hash(name);
    const std::size_t index = IndexOf(name, hash);
    if (index != kNone) {
        entries_[index].element.value = value;
        entries_[index].element.place = place;
        return;
    }
    if (entries_.size() == buckets_.size()) DoubleBuckets();
    std::size_t& bucket = BucketOf(hash);
    entries_.push_back({{String(name), String(value), place}, hash, bucket});
    bucket = entries_.size() - 1;
}

void ParameterSet::DoubleBuckets() {
    buckets_.assign(buckets_.size() * 2, kNone);
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        std::size_t& bucket = BucketOf(entries_[i].hash);
        entries_[i].next = bucket;
        bucket = i;
    }
}

const ParameterSet::Element* ParameterSet::Find(StringView name) const {
    const std::size_t index = IndexOf(name, Hash(name));
    return index == kNone ? nullptr : &entries_[index].element;
}

String ParameterSet::Get(StringView name, StringView default_value) const {
    const Element* element = Find(name);
    return element != nullptr ? element->value : String(default_value);
}

bool ParameterSet::Dump(String& error, StringView prefix, Quillon::Logger& logger,
                        const Shown& shown) const {
    for (const Entry& entry : entries_) {
        const Element& element = entry.element;
        const String line =
            Format(u"  %s.%s=%s", prefix, element.name, shown ? shown(element) : element.value);
        if (!logger.Write(error, line, 0)) return false;
    }
    return true;
}

bool IsTrue(StringView value) { return value == u"1" || text::EqualsIgnoringCase(value, u"true"); }
