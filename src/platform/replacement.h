// Files that come into being beside the one that they replace when they are whole.
#pragma once

#include <memory>

#include "base/error_record.h"
#include "base/strings.h"
#include "platform/file_system.h"

namespace platform {

// A new file that is to take a name in a single step: what stands under the name is the old file or
// the whole new one, whatever happens. Until then it is called as the target with ".quillon-part"
// behind it and belongs to this run alone. It is removed when it is destroyed before it got in
// place, and when the run is interrupted (SIGINT, SIGTERM, SIGHUP, the end of a Windows console);
// what a killed run left behind is made anew.
class Replacement {
public:
    // Why there is none.
    enum class Refusal {
        NotWritable,  // the target may not be written, or cannot be made at all
        NoPart,       // there can be no part file; the target itself might be written
        Held          // another run holds the part file
    };

    virtual ~Replacement() = default;

    // Whether `name` is that of a regular file, or of none yet. What else there is (a console, a
    // pipe, a FIFO, a device, a stream of this process) is not replaced.
    static bool AppliesTo(const String& name);

    // Begins an empty file that is to replace the one that `name` leads to, through links, with its
    // access rights and, where the system allows it, its owner. Nobody else writes that file
    // meanwhile, as far as the system keeps locks.
    // On failure returns null, `refusal` says why, and `error` holds the system's text and code.
    static std::unique_ptr<Replacement> Begin(ErrorRecord& error, Refusal& refusal,
                                              const String& name);
    // How the part file of `name` is called.
    static String PartNameOf(const String& name);

    // Whether this one is to get the name that `name` leads to.
    virtual bool IsFor(const String& name) const = 0;
    // Whether there is a file that it replaces.
    virtual bool HasOld() const = 0;
    // Opens the new file for writing, at its start. It may be opened again once it has been closed.
    virtual std::unique_ptr<OutputFile> Open(ErrorRecord& error) = 0;
    // Makes the new file empty again.
    virtual bool Empty(ErrorRecord& error) = 0;
    // Sees to it that all that was written is on the disk.
    virtual bool FlushToDisk(ErrorRecord& error) = 0;
    // Gives the new file its name, in place of the old one. On failure the old one is as it was.
    virtual bool PutInPlace(ErrorRecord& error) = 0;
};

}  // namespace platform
