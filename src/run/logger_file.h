#pragma once

#include "core/logger.h"
#include "files/dfile.h"
#include "platform/clock.h"

namespace Quillon {

// Writes messages to a log file, each with the local time in front and an empty line behind:
//
//     2026-03-05 09:07:03 > Step #0: 10 items done.<CR><LF>
//     <CR><LF>
//
// A new log carries no mark and holds UTF-8. An existing log with a mark goes on in its own
// encoding.
class LoggerFile final : public Logger {
public:
    explicit LoggerFile(const platform::Clock& clock = platform::SystemClock()) : clock_(clock) {}

    // Fails with the file layer's message.
    bool Open(String& error, const String& file_name, bool overwrite) override;
    // False, with nothing written, while no file is open.
    bool Write(String& error, StringView message, int level) override;
    bool Close() override;

private:
    bool WriteText(String& error, StringView text);

    const platform::Clock& clock_;
    dFile file_;
    bool open_ = false;
};

}  // namespace Quillon
