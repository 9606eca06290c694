#pragma once

#include <vector>

#include "core/logger.h"

namespace testing_support {

// Keeps the messages that were written.
class CollectingLogger final : public Quillon::Logger {
public:
    bool Open(String&, const String&, bool) override { return true; }
    bool Write(String&, StringView message, int level) override {
        last_level_ = level;
        messages_.emplace_back(message);
        return true;
    }
    bool Close() override { return true; }

    const std::vector<String>& Messages() const { return messages_; }
    int LastLevel() const { return last_level_; }

private:
    int last_level_ = -1;
    std::vector<String> messages_;
};

}  // namespace testing_support
