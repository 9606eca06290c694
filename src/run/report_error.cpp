#include "run/report_error.h"

#include "core/logger.h"

bool ReportError(String& error, Quillon::Logger& logger, StringView message) {
    if (!message.empty()) error = message;
    String ignored;
    if (!error.empty()) logger.Write(ignored, error, 0);
    return false;
}
