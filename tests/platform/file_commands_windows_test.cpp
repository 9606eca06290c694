#include "platform/file_commands.h"

#include <windows.h>

#include <filesystem>
#include <iterator>
#include <optional>

#include "base/utf8.h"
#include "platform/windows/handle.h"
#include "platform/windows/wide.h"
#include "support/scratch.h"

namespace {

// Opens a file for reading. share: what others may do meanwhile
platform::Handle OpenToRead(const String& name, DWORD share) {
    return platform::Handle(::CreateFileW(platform::AsWide(name), GENERIC_READ, share, nullptr,
                                          OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
}

// What a file keeps under other names and with another content.
DWORD IndexOf(const String& name) {
    BY_HANDLE_FILE_INFORMATION information{};
    EXPECT_TRUE(::GetFileInformationByHandle(OpenToRead(name, 0).Get(), &information));
    return information.nFileIndexLow;
}

TEST(FileCommands, CopiesReplaceAFileAsAWhole) {
    const testing_support::ScratchFolder folder;
    folder.MakeFolder("sub");
    folder.Write("new", "new");
    folder.Write("sub/old", "old");
    const String old = folder.Path("sub/old");
    ErrorRecord error;
    const DWORD index = IndexOf(old);
    ASSERT_TRUE(platform::CopyOneFile(error, folder.Path("new"), old)) << ToUtf8(error.text);
    EXPECT_NE(IndexOf(old), index) << "it was written, not replaced";
    EXPECT_EQ(folder.Read("sub/old"), "new");
    folder.Write("new", "newer");
    {
        // It cannot be replaced now, only written.
        const platform::Handle reader = OpenToRead(old, FILE_SHARE_READ | FILE_SHARE_WRITE);
        ASSERT_TRUE(platform::CopyOneFile(error, folder.Path("new"), old)) << ToUtf8(error.text);
    }
    EXPECT_EQ(folder.Read("sub/old"), "newer");
    EXPECT_FALSE(platform::CopyOneFile(error, old, folder.Path("sub/../sub/old")));
    EXPECT_EQ(folder.Read("sub/old"), "newer");
    const std::filesystem::directory_iterator entries(folder.Path("sub"));
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1) << "a part is left";
}

TEST(FileCommands, LeaveOpenFilesAlone) {
    const testing_support::ScratchFolder folder;
    folder.MakeFolder("sub");
    folder.Write("sub/open", "kept");
    folder.Write("other", "new");
    const String open = folder.Path("sub/open");
    const String other = folder.Path("other");
    std::optional<platform::Handle> handle(OpenToRead(open, 0));
    ASSERT_TRUE(handle->Valid());
    ErrorRecord error;
    EXPECT_FALSE(platform::CopyOneFile(error, open, folder.Path("copy")));
    EXPECT_EQ(error.code, DWORD{ERROR_SHARING_VIOLATION});
    EXPECT_FALSE(platform::CopyOneFile(error, other, open));
    EXPECT_EQ(error.code, DWORD{ERROR_SHARING_VIOLATION});
    EXPECT_FALSE(platform::RemoveOneFile(error, open));
    EXPECT_EQ(error.code, DWORD{ERROR_SHARING_VIOLATION});
    EXPECT_FALSE(platform::RemoveFolder(error, folder.Path("sub")));
    EXPECT_NE(error.text, u"");
    handle.reset();
    EXPECT_EQ(folder.Read("sub/open"), "kept");
    EXPECT_TRUE(platform::RemoveFolder(error, folder.Path("sub"))) << ToUtf8(error.text);
    EXPECT_FALSE(folder.Exists("sub"));
}

}  // namespace
