#pragma once

#include "core/logger.h"

namespace Quillon {

// Shows messages on a standard stream, a line each.
class LoggerConsole final : public Logger {
public:
    enum class Stream { Output, Error };

    explicit LoggerConsole(Stream stream = Stream::Output) : stream_(stream) {}

    bool Open(String& error, const String& file_name, bool overwrite) override;
    bool Write(String& error, StringView message, int level) override;
    bool Close() override;

    // Shows a text without a line end behind it.
    void Show(StringView text) const;

private:
    Stream stream_;
};

}  // namespace Quillon
