#include "basalt/FileLock.h"

#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

namespace {

class FileLockTest : public testing::Test {
  protected:
    [[nodiscard]] FileLock Lock() const { return {here, "a.lock"}; }

    TemporaryFolder folder;
    const FolderHandle here{".", FolderHandle::Links::Followed};
};

TEST_F(FileLockTest, isHeldUntilItsObjectIsDestroyed) {
    {
        const FileLock first = Lock();
        EXPECT_EQ(first.Result(), FileLock::State::Taken);
        EXPECT_EQ(Lock().Result(), FileLock::State::HeldByAnother);
        EXPECT_EQ(Lock().Result(), FileLock::State::HeldByAnother);
    }
    EXPECT_EQ(Lock().Result(), FileLock::State::Taken);
}

TEST_F(FileLockTest, isPrivateAndSticky) {
    const FileLock lock = Lock();
    struct stat state {};
    ASSERT_EQ(stat("a.lock", &state), 0);
    EXPECT_EQ(state.st_mode, static_cast<mode_t>(S_IFREG | S_ISVTX | 0600));
}

TEST_F(FileLockTest, locksTheFileThatNowHasTheName) {
    const FileLock first = Lock();
    std::filesystem::remove("a.lock");
    EXPECT_EQ(Lock().Result(), FileLock::State::Taken);
    EXPECT_TRUE(std::filesystem::exists("a.lock"));
}

TEST_F(FileLockTest, failsOnAnythingButAFileOfThisUser) {
    WriteFile("precious", "keep");
    std::filesystem::create_symlink("precious", "a.lock");
    EXPECT_EQ(Lock().Failure(), std::errc::too_many_symbolic_link_levels);
    std::filesystem::remove("a.lock");
    std::filesystem::create_directory("a.lock");
    EXPECT_EQ(Lock().Failure(), std::errc::is_a_directory);
    std::filesystem::remove("a.lock");
    ASSERT_EQ(mkfifo("a.lock", 0600), 0);
    EXPECT_EQ(Lock().Failure(), std::errc::operation_not_permitted);
    EXPECT_EQ(Lock().Result(), FileLock::State::Failed);
    std::filesystem::remove("a.lock");
    WriteFile("a.lock", "");
    if (chown("a.lock", 65534, 65534) == 0) { // only root can
        EXPECT_EQ(Lock().Failure(), std::errc::operation_not_permitted);
    }
    const FolderHandle missing("missing", FolderHandle::Links::Followed);
    EXPECT_EQ(FileLock(missing, "a.lock").Result(), FileLock::State::Failed);
    EXPECT_EQ(std::filesystem::status("precious").permissions() & std::filesystem::perms::sticky_bit,
              std::filesystem::perms::none);
}

} // namespace
