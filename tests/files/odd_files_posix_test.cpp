#include <gtest/gtest.h>
#include <unistd.h>

#include "base/notices.h"
#include "base/utf8.h"
#include "files/dfile.h"
#include "files/strict_text.h"
#include "support/scratch.h"

namespace {

// Closes what the next file to be opened will be, behind its owner's back.
class NextDescriptor {
public:
    NextDescriptor() : number_(::dup(STDIN_FILENO)) { ::close(number_); }
    void Close() const { ::close(number_); }

private:
    int number_;
};

}  // namespace

TEST(OddFiles, TellOfDataThatDidNotArrive) {
    const testing_support::ScratchFolder folder;
    const String name = folder.Path("file");
    const String message = u"Could not write to file '" + name + u"': Bad file descriptor";
    String notices;
    const NoticeReceiver receiver([&](StringView text, NoticeStream) { notices += text; });
    for (const bool finish : {false, true}) {
        const NextDescriptor next;
        dFile file;
        ErrorRecord error;
        ASSERT_TRUE(file.Open(error, name, Encoding::Utf8, false) && file.Write(error, u"a"));
        next.Close();
        EXPECT_EQ(finish ? file.Finish(error) : file.Close(), !finish);
        EXPECT_EQ(error.text, finish ? message : u"");
        EXPECT_TRUE(file.Finish(error));  // nothing is open any more
    }
    EXPECT_EQ(notices, message + u"\n");
}

TEST(OddFiles, AreLoadedBeyondTheLengthThatTheyClaim) {
    String text;
    ErrorRecord error;
    ASSERT_TRUE(LoadStrictText(error, u"/proc/version", text));  // claims to be empty
    std::string line;
    std::getline(std::ifstream("/proc/version"), line);
    EXPECT_EQ(ToUtf8(text), line + "\n");
}
