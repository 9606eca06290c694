#include "check/shared_files.h"

#include <algorithm>

#include "files/format.h"
#include "platform/replacement.h"

void SharedFiles::Add(const Named& named) {
    if (named.name.empty()) return;
    const bool regular =
        !platform::PathExists(named.name) || platform::Replacement::AppliesTo(named.name);
    if (!regular) return;
    noted_.push_back({named, platform::RootedName(named.name), platform::IdentityOf(named.name)});
}

bool SharedFiles::AreSame(const Noted& one, const Noted& other) {
    return one.rooted == other.rooted || (one.identity && one.identity == other.identity);
}

// Whether `one`, of the higher use, spoils the other or is spoiled by it. A later step may well
// read what an earlier one has set aside or logged.
bool SharedFiles::Exclude(const Named& one, const Named& other) {
    switch (one.use) {
        case Use::Report:
            return true;
        case Use::Reject:
            // A source tells itself that its rejects would go into its own file.
            return other.use != Use::Read ||
                   (one.step == other.step && one.section != other.section);
        case Use::Log:
            return other.use == Use::Job || (other.use == Use::Target && one.step == other.step);
        case Use::Target:
            return other.use == Use::Job;
        default:
            return false;
    }
}

// Whose file `one` is, too.
String SharedFiles::Whose(const Named& one, const Named& other) {
    if (other.section.empty()) return Format(u"the %s", other.label);
    const String key = one.label == other.label ? String(u"that") : Format(u"the %s", other.label);
    return Format(u"%s of the %s of step %u", key, other.section, other.step);
}

std::vector<SharedFiles::Clash> SharedFiles::Clashes() const {
    std::vector<Noted> sorted = noted_;
    std::ranges::stable_sort(sorted, {}, [](const Noted& noted) { return noted.named.use; });
    std::vector<Clash> clashes;
    for (auto one = sorted.begin(); one != sorted.end(); ++one) {
        const auto other = std::find_if(sorted.begin(), one, [&](const Noted& before) {
            return AreSame(before, *one) && Exclude(one->named, before.named);
        });
        if (other == one) continue;
        const Named& named = one->named;
        clashes.push_back({named.place, named.use,
                           Format(u"The %s '%s' is %s, too.", named.label, named.name,
                                  Whose(named, other->named))});
    }
    return clashes;
}
