#include "platform/file_commands.h"

#include <windows.h>

#include "base/utf8.h"
#include "platform/windows/wide.h"
#include "support/scratch.h"

namespace {

TEST(FileCommands, LeaveOpenFilesAlone) {
    const testing_support::ScratchFolder folder;
    folder.MakeFolder("sub");
    folder.Write("sub/open", "kept");
    folder.Write("other", "new");
    const String open = folder.Path("sub/open");
    const String other = folder.Path("other");
    const HANDLE handle = ::CreateFileW(platform::AsWide(open), GENERIC_READ, 0, nullptr,
                                        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(handle, INVALID_HANDLE_VALUE);
    ErrorRecord error;
    EXPECT_FALSE(platform::CopyOneFile(error, open, folder.Path("copy")));
    EXPECT_EQ(error.code, DWORD{ERROR_SHARING_VIOLATION});
    EXPECT_FALSE(platform::CopyOneFile(error, other, open));
    EXPECT_EQ(error.code, DWORD{ERROR_SHARING_VIOLATION});
    EXPECT_FALSE(platform::RemoveOneFile(error, open));
    EXPECT_EQ(error.code, DWORD{ERROR_SHARING_VIOLATION});
    EXPECT_FALSE(platform::RemoveFolder(error, folder.Path("sub")));
    EXPECT_NE(error.text, u"");
    ::CloseHandle(handle);
    EXPECT_EQ(folder.Read("sub/open"), "kept");
    EXPECT_TRUE(platform::RemoveFolder(error, folder.Path("sub"))) << ToUtf8(error.text);
    EXPECT_FALSE(folder.Exists("sub"));
}

}  // namespace
