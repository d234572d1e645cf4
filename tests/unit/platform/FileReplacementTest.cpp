#include "basalt/FileReplacement.h"

#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

const auto kDone = std::error_code();

TEST(ReplaceFile, keepsThePermissionsAndTheLinksOfTheTarget) {
    const TemporaryFolder folder;
    WriteFile("target", "old");
    fs::permissions("target", fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("target", "link");
    WriteFile("from", "new");
    EXPECT_EQ(ReplaceFile("from", "link"), kDone);
    EXPECT_EQ(FileContent("target"), "new");
    EXPECT_TRUE(fs::is_symlink("link"));
    EXPECT_EQ(fs::status("target").permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST(ReplaceFile, keepsTheOwnerAndTheGroupOfTheTarget) {
    const TemporaryFolder folder;
    WriteFile("target", "old");
    WriteFile("from", "new");
    if (chown("target", 12345, 54321) != 0)
        GTEST_SKIP() << "this user may not give files away";
    fs::permissions("target", fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(ReplaceFile("from", "target"), kDone);
    EXPECT_EQ(FileContent("target"), "new");
    struct stat state {};
    ASSERT_EQ(stat("target", &state), 0);
    EXPECT_EQ(state.st_uid, 12345U);
    EXPECT_EQ(state.st_gid, 54321U);
    EXPECT_EQ(state.st_mode & 07777U, 0600U);
    WriteFile("from", "other group alone");
    ASSERT_EQ(chown("target", getuid(), 54321), 0);
    EXPECT_EQ(ReplaceFile("from", "target"), kDone);
    ASSERT_EQ(stat("target", &state), 0);
    EXPECT_EQ(state.st_gid, 54321U);
    EXPECT_EQ(ReplaceFile("gone", "target"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(FileContent("target"), "other group alone");
}

TEST(ReplaceFile, refusesWhatIsNoFile) {
    const TemporaryFolder folder;
    WriteFile("from", "new");
    EXPECT_EQ(ReplaceFile("from", "missing"), std::errc::no_such_file_or_directory);
    fs::create_directory("folder");
    EXPECT_EQ(ReplaceFile("from", "folder"), std::errc::not_supported);
    EXPECT_EQ(ReplaceFile("gone", "from"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(FileContent("from"), "new");
}

} // namespace
