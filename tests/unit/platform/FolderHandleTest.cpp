#include "basalt/FolderHandle.h"

#include "FolderTree.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using Tree = std::map<std::string, std::string>;

class FolderHandleTest : public testing::Test {
  protected:
    TemporaryFolder folder;
    const FolderHandle here{".", FolderHandle::Links::Followed};
};

TEST_F(FolderHandleTest, renamesOnlyToAFreeName) {
    WriteFile("a", "new");
    WriteFile("b", "old");
    EXPECT_EQ(here.RenameToFree("a", "b"), std::errc::file_exists);
    EXPECT_EQ(FolderTree("."), (Tree{{"a", "new"}, {"b", "old"}}));
    EXPECT_FALSE(here.RenameToFree("a", "c"));
    EXPECT_EQ(FolderTree("."), (Tree{{"b", "old"}, {"c", "new"}}));
    EXPECT_EQ(here.RenameToFree("a", "d"), std::errc::no_such_file_or_directory);
    std::filesystem::create_symlink("nowhere", "link");
    EXPECT_EQ(here.RenameToFree("c", "link"), std::errc::file_exists);
}

TEST_F(FolderHandleTest, removesOnlyFilesAndLinks) {
    WriteFile("a", "");
    std::filesystem::create_symlink("a", "link");
    std::filesystem::create_directory("folder");
    EXPECT_FALSE(here.RemoveFile("link"));
    EXPECT_EQ(here.RemoveFile("folder"), std::errc::is_a_directory);
    EXPECT_FALSE(here.RemoveFile("a"));
    EXPECT_EQ(here.RemoveFile("a"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(FolderTree("."), (Tree{{"folder/", ""}}));
}

} // namespace
