#pragma once

#include <map>
#include <memory>
#include <vector>

#include "base/error_record.h"
#include "base/strings.h"
#include "platform/file_system.h"

// Opens files that are read more than once. What gives its bytes only once, a pipe say, is read to
// its end the first time and kept.
class KeptFiles {
public:
    // As InputFile::Open does.
    std::unique_ptr<platform::InputFile> Open(ErrorRecord& error, const String& name);

private:
    std::map<String, std::vector<std::byte>> kept_;
};
