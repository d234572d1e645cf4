#include "cinder/PartialFile.h"

#include "FolderTree.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

using Tree = std::map<std::string, std::string>;

int OpenHere() {
    return open(".", O_PATH | O_DIRECTORY | O_CLOEXEC);
}

TEST(PartialFile, hasItsNameOnlyWhenItIsKept) {
    const TemporaryFolder folder;
    WriteFile("a", "old");
    {
        PartialFile file(OpenHere(), "a", 0640);
        ASSERT_TRUE(file.IsOpen());
        EXPECT_TRUE(file.Write("new"));
        EXPECT_EQ(FileContent("a"), "old");
        EXPECT_TRUE(file.Keep());
    }
    EXPECT_EQ(FolderTree("."), (Tree{{"a", "new"}}));
    {
        PartialFile file(OpenHere(), "a", 0640);
        EXPECT_TRUE(file.Write("given up"));
    }
    EXPECT_EQ(FolderTree("."), (Tree{{"a", "new"}}));
}

TEST(PartialFile, isNotOpenedWhereAnythingButAFileStands) {
    const TemporaryFolder folder;
    std::filesystem::create_directory("folder");
    WriteFile("outside", "kept");
    std::filesystem::create_symlink("outside", "link");
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    for (const char* const name : {"folder", "link", "pipe"}) {
        EXPECT_FALSE(PartialFile(OpenHere(), name, 0644).IsOpen()) << name;
        EXPECT_FALSE(std::filesystem::is_regular_file(std::filesystem::symlink_status(name))) << name;
    }
    EXPECT_FALSE(PartialFile(-1, "a", 0644).IsOpen());
    EXPECT_EQ(FileContent("outside"), "kept");
}

TEST(PartialFile, leavesNothingWhenItsNameIsTakenMeanwhile) {
    const TemporaryFolder folder;
    {
        PartialFile file(OpenHere(), "a", 0644);
        EXPECT_TRUE(file.Write("x"));
        std::filesystem::create_directory("a");
        EXPECT_FALSE(file.Keep());
    }
    EXPECT_EQ(FolderTree("."), (Tree{{"a/", ""}}));
}

} // namespace
