#pragma once

#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "base/error_record.h"
#include "base/strings.h"
#include "platform/file_system.h"

// Opens files that are read more than once, so that each reading finds the same. What gives its
// bytes only once, a pipe say, is read to its end the first time and kept. A file that could not be
// opened or read once cannot be later.
class KeptFiles {
public:
    // As InputFile::Open does.
    std::unique_ptr<platform::InputFile> Open(ErrorRecord& error, const String& name);

private:
    struct Failure {
        std::optional<ErrorRecord> opening;
        bool reading = false;
    };

    std::map<String, std::vector<std::byte>> kept_;
    std::map<String, Failure> failures_;
};
