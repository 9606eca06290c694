#include "platform/driver_library.h"

#include "support/scratch.h"

namespace {

TEST(DriverLibrary, IsTheDriverEntryOfTheAttributes) {
    EXPECT_EQ(platform::DriverLibrary(u"", u"Driver=libfoo.so"), u"libfoo.so");
    EXPECT_EQ(platform::DriverLibrary(u"", u"Setup=a;Driver=/x/libfoo.so;Driver64=b"),
              u"/x/libfoo.so");
    EXPECT_EQ(platform::DriverLibrary(u"", u"Setup=a;Driver64=b"), u"");
    EXPECT_EQ(platform::DriverLibrary(u"", u""), u"");
}

TEST(DriverLibrary, HasTheVersionOfItsRealName) {
    const testing_support::ScratchFolder folder;
    const struct {
        const char* file;
        const char16_t* version;
    } kCases[] = {
        {"libfoo.so.1.2.3", u"1.2.3"}, {"libfoo-0.9998.so", u"0.9998"}, {"libfoo.so", u""},
        {"libfoo-x.so", u""},          {"libfoo.so.1a", u""},           {"foo-1.2", u""},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.file);
        folder.Write(c.file, "");
        std::filesystem::create_symlink(c.file, folder.Path("link.so"));
        EXPECT_EQ(platform::DriverLibraryVersion(folder.Path(c.file)), c.version);
        EXPECT_EQ(platform::DriverLibraryVersion(folder.Path("link.so")), c.version);
        std::filesystem::remove(folder.Path("link.so"));
    }
    EXPECT_EQ(platform::DriverLibraryVersion(u"no-such-library-1.so"), u"");
    EXPECT_EQ(platform::DriverLibraryVersion(u""), u"");
}
}  // namespace
