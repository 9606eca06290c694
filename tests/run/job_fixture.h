#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <utility>
#include <vector>

#include "base/utf8.h"
#include "config/configuration.h"
#include "platform/clock.h"
#include "run/manager.h"
#include "support/scratch.h"

namespace testing_support {

// A clock whose ticks follow a list, then stay at the last one. A run reads them at its start, and
// for each step at the start and the end of its processing and at its end.
class ScriptedClock final : public platform::Clock {
public:
    platform::LocalTime Now() const override { return {2026, 3, 5, 9, 7, 3}; }
    std::uint64_t TickMs() const override {
        return next_ + 1 < ticks_ms_.size() ? ticks_ms_[next_++] : ticks_ms_.back();
    }
    void SetTicks(std::vector<std::uint64_t> ticks_ms) {
        ticks_ms_ = std::move(ticks_ms);
        next_ = 0;
    }

private:
    std::vector<std::uint64_t> ticks_ms_{0};
    mutable std::size_t next_ = 0;
};

// Runs jobs inside a scratch folder. "@" in a job or an argument stands for that folder and the
// separator behind it.
class JobTest : public testing::Test {
protected:
    String Here(std::string_view text) const {
        String all;
        FromUtf8(text, all);
        const String here = folder_.Path("x");
        for (std::size_t at = 0; (at = all.find(u'@', at)) != String::npos; at += here.size() - 1) {
            all.replace(at, 1, here, 0, here.size() - 1);
        }
        return all;
    }
    bool Run(std::string_view job, std::initializer_list<std::string> arguments = {}) {
        folder_.Write("job.qpr", ToUtf8(Here(job)));
        Configuration configuration(clock_);
        std::vector<String> all{u"-config=" + folder_.Path("job.qpr")};
        for (const std::string& argument : arguments) all.push_back(Here(argument));
        configuration.ParseCommandLine(all);
        error_.clear();
        return Manager(clock_).Run(error_, configuration);
    }
    // The same with all messages in log.txt, statistics left out.
    bool RunSilently(std::string_view job) { return Run(job, {"-silent", "-Log=@log.txt"}); }
    // A record as log files hold it.
    static std::string Record(const std::string& message) {
        return "2026-03-05 09:07:03 > " + message + "\r\n\r\n";
    }
    // A step that copies lines from one text file to another.
    static std::string CopyStep(const std::string& from, const std::string& to,
                                const std::string& settings = "") {
        return "Step #\nSource\nType=TextFile\nName=@" + from +
               "\nHeader=0\nTarget\nType=TextFile\nName=@" + to + "\nSettings\n" + settings;
    }
    std::string Log() const { return folder_.Read("log.txt"); }

    ScratchFolder folder_;
    ScriptedClock clock_;
    String error_;
};

}  // namespace testing_support
