#include "run/logger_console.h"

#include "platform/console.h"

namespace Quillon {

bool LoggerConsole::Open(String&, const String&, bool) { return true; }

bool LoggerConsole::Write(String&, StringView message, int) {
    String line(message);
    line += platform::LineEnd();
    Show(line);
    return true;
}

bool LoggerConsole::Close() { return true; }

void LoggerConsole::Show(StringView text) const {
    if (stream_ == Stream::Output) {
        platform::WriteOutputText(text);
    } else {
        platform::WriteErrorText(text);
    }
}

}  // namespace Quillon
