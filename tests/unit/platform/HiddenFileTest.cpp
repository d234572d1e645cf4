#include "basalt/HiddenFile.h"

#include "FolderTree.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using Tree = std::map<std::string, std::string>;

FolderHandle Here() {
    return {".", FolderHandle::Links::Followed};
}

TEST(HiddenFile, hasItsNameOnlyAfterKeep) {
    const TemporaryFolder folder;
    const FolderHandle here = Here();
    WriteFile("a", "old");
    {
        HiddenFile file(here, 0640);
        ASSERT_TRUE(file.IsOpen());
        EXPECT_TRUE(file.Write("new", 3));
        EXPECT_EQ(FileContent("a"), "old");
        EXPECT_TRUE(file.Keep("a"));
    }
    EXPECT_EQ(FolderTree("."), (Tree{{"a", "new"}}));
    {
        HiddenFile file(here, 0640);
        EXPECT_TRUE(file.Write("given up", 8));
    }
    EXPECT_EQ(FolderTree("."), (Tree{{"a", "new"}}));
}

TEST(HiddenFile, followsItsRenamedFolder) {
    const TemporaryFolder folder;
    std::filesystem::create_directory("before");
    const FolderHandle opened("before", FolderHandle::Links::Refused);
    HiddenFile file(opened, 0640);
    std::filesystem::rename("before", "after");
    std::filesystem::create_directory("before");
    EXPECT_TRUE(file.Keep("a"));
    EXPECT_EQ(FolderTree("."), (Tree{{"after/", ""}, {"after/a", ""}, {"before/", ""}}));
}

TEST(HiddenFile, reportsWhyItsFolderIsNotOpen) {
    const TemporaryFolder folder;
    const FolderHandle missing("missing", FolderHandle::Links::Followed);
    const HiddenFile file(missing, 0644);
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(file.Failure(), std::errc::no_such_file_or_directory);
}

TEST(HiddenFile, leavesNothingWhenItsNameWasTaken) {
    const TemporaryFolder folder;
    const FolderHandle here = Here();
    {
        HiddenFile file(here, 0644);
        EXPECT_TRUE(file.Write("x", 1));
        std::filesystem::create_directory("a");
        EXPECT_FALSE(file.Keep("a"));
        EXPECT_EQ(file.Failure(), std::errc::is_a_directory);
    }
    EXPECT_EQ(FolderTree("."), (Tree{{"a/", ""}}));
}

} // namespace
