#include "base/activity_trail.h"

#include <vector>

namespace {

constexpr std::size_t kInitialEntries = 8;

std::vector<StringView>& Trail() {
    static std::vector<StringView> trail = [] {
        std::vector<StringView> entries;
        entries.reserve(kInitialEntries);
        return entries;
    }();
    return trail;
}

}  // namespace

void TraceState(StringView name) {
    std::vector<StringView>& trail = Trail();
    if (!name.empty()) {
        trail.push_back(name);
    } else if (!trail.empty()) {
        trail.pop_back();
    }
}

StringView CurrentState() { return Trail().empty() ? StringView{} : Trail().back(); }
