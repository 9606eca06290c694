#pragma once

#include "base/strings.h"

namespace Quillon {

// Where the messages of a run go.
class Logger {
public:
    virtual ~Logger() = default;

    // Makes the logger ready. overwrite: what an earlier run logged under `file_name` is dropped.
    virtual bool Open(String& error, const String& file_name, bool overwrite) = 0;
    // Writes one message. level: 0 everywhere, not interpreted.
    virtual bool Write(String& error, StringView message, int level) = 0;
    virtual bool Close() = 0;
};

}  // namespace Quillon
