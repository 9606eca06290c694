#include "platform/file_system.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/scratch.h"

using platform::FileIdentity;
using platform::IdentityOf;
using platform::InputFile;
using platform::OutputFile;

TEST(FileSystem, KnowsAFileByAllItsNames) {
    const testing_support::ScratchFolder folder;
    folder.Write("one", "same");
    folder.Write("other", "same");
    folder.MakeFolder("below");
    std::filesystem::create_hard_link(folder.Path("one"), folder.Path("link"));
    const std::optional<FileIdentity> one = IdentityOf(folder.Path("one"));
    ASSERT_TRUE(one);
    EXPECT_EQ(IdentityOf(folder.Path("below/../one")), one);
    EXPECT_EQ(IdentityOf(folder.Path("link")), one);
    EXPECT_NE(IdentityOf(folder.Path("other")), one);
    EXPECT_EQ(IdentityOf(folder.Path("below/..")), IdentityOf(folder.Path()));
    EXPECT_FALSE(IdentityOf(folder.Path("none")));
}

TEST(FileSystem, RefusesANameWithAZeroCharacter) {
    const testing_support::ScratchFolder folder;
    folder.Write("file", "kept");
    String name = folder.Path("file");
    name.push_back(u'\0');
    EXPECT_FALSE(platform::PathExists(name) || IdentityOf(name));
    ErrorRecord reading;
    EXPECT_FALSE(InputFile::Open(reading, name));
    EXPECT_NE(reading.code, 0u);
    for (const auto mode : {OutputFile::Mode::Truncate, OutputFile::Mode::OpenExisting,
                            OutputFile::Mode::CreateNew}) {
        ErrorRecord writing;
        EXPECT_FALSE(OutputFile::Open(writing, name, mode));
        EXPECT_EQ(writing.code, reading.code);
    }
    EXPECT_EQ(folder.Read("file"), "kept");
}
