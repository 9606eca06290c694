#pragma once

#include "core/logger.h"

namespace Quillon {

// Shows messages on standard output, a line each.
class LoggerConsole final : public Logger {
public:
    bool Open(String& error, const String& file_name, bool overwrite) override;
    bool Write(String& error, StringView message, int level) override;
    bool Close() override;
};

}  // namespace Quillon
