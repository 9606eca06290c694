#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "base/strings.h"
#include "core/place.h"
#include "platform/file_system.h"

// The files that a job names for several uses, of which one would destroy what the other writes or
// reads.
class SharedFiles {
public:
    enum class Use { Job, Read, Target, Log, Reject, Report };

    struct Named {
        Use use;
        std::size_t step;  // 0 for what belongs to no step
        String label;      // as messages call it: "RejectFile", "report"
        String section;    // where the key stands; empty for what is no key
        String name;
        Place place;
    };
    struct Clash {
        Place place;
        Use use;
        String text;
    };

    // Notes a file; what is no regular file (a pipe, a device) is everybody's.
    void Add(const Named& named);
    // One for each file that is another one's, too.
    // "The %s '%s' is that of the %s of step %u, too."
    // "The %s '%s' is the %s of the %s of step %u, too."
    // "The %s '%s' is the %s, too.", such as "job file"
    std::vector<Clash> Clashes() const;

private:
    struct Noted {
        Named named;
        String rooted;
        std::optional<platform::FileIdentity> identity;  // of what is there already
    };

    static bool AreSame(const Noted& one, const Noted& other);
    static bool Exclude(const Named& one, const Named& other);
    static String Whose(const Named& one, const Named& other);

    std::vector<Noted> noted_;
};
