#pragma once

#include "check/secret_mask.h"
#include "core/logger.h"

namespace Quillon {

// Hides the secrets in the messages for another logger.
class LoggerMasked final : public Logger {
public:
    // Both outlive this logger.
    LoggerMasked(Logger& logger, const SecretMask& mask) : logger_(logger), mask_(mask) {}

    bool Open(String& error, const String& file_name, bool overwrite) override {
        return logger_.Open(error, file_name, overwrite);
    }
    bool Write(String& error, StringView message, int level) override {
        return logger_.Write(error, mask_.Masked(message), level);
    }
    bool Close() override { return logger_.Close(); }

private:
    Logger& logger_;
    const SecretMask& mask_;
};

}  // namespace Quillon
