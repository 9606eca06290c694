#pragma once

#include <memory>
#include <vector>

#include "base/error_record.h"
#include "base/strings.h"
#include "platform/file_system.h"
#include "platform/replacement.h"

namespace DataConsumers {

// What stands under the name of a file when its step has failed: the words of `OnFailure`.
enum class OnFailure {
    Keep,    // what has been written
    Restore  // what stood there before
};

// The files that a step makes one after another. With OnFailure::Restore they are written beside
// the files that they replace and get their names all together, when the step has succeeded;
// destroyed before, they are removed. What is no regular file is written itself.
class MadeFiles {
public:
    // What the step does with files that are there, and with one that it made itself.
    struct Policy {
        OnFailure on_failure = OnFailure::Keep;
        bool append = false;
        bool once = false;  // whether a file that would be made twice is refused
    };

    // Forgets what was made so far.
    void Start(const Policy& policy);

    // Whether the file of that name stays as it is until Commit.
    bool Replaces(const String& name) const;

    // Opens a file for writing. goes_on: it was there before and is appended to.
    // "Could not open file for writing: " and the system's text
    // "The part file '%s' is in use by another run."
    // "Could not make the part file '%s': %s. OnFailure=Keep writes without one."
    // "Two result sets would make the file '%s'. Overwrite=0 puts one behind the other."
    std::unique_ptr<platform::OutputFile> Open(String& error, const String& name, bool& goes_on);

    // The latest file has been closed.
    // "Could not write to file '%s': %s" when it did not arrive on the disk.
    bool EndFile(String& error);

    // Gives all files their names.
    // "Could not replace file '%s': %s", with " Replaced before: 'a', 'b'." where some are done.
    bool Commit(String& error);

private:
    struct Part {
        String name;
        std::unique_ptr<platform::Replacement> file;
    };

    std::unique_ptr<platform::OutputFile> OpenItself(String& error, const String& name,
                                                     bool& goes_on);
    std::unique_ptr<platform::OutputFile> OpenPart(String& error, const String& name,
                                                   bool& goes_on);
    std::unique_ptr<platform::OutputFile> OpenAgain(ErrorRecord& error, Part& part);
    std::unique_ptr<platform::OutputFile> OpenNew(String& error, const String& name, bool& goes_on);

    Policy policy_;
    std::vector<platform::FileIdentity> written_;  // files that were written themselves
    std::vector<Part> parts_;
    Part* latest_ = nullptr;  // the part that is being written
};

}  // namespace DataConsumers
