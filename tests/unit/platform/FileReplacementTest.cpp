#include "basalt/AtomicFile.h"

#include "FileSizeLimit.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

const auto kDone = std::error_code();

TEST(ReplaceAtomically, keepsThePermissionsAndTheLinksOfTheTarget) {
    const TemporaryFolder folder;
    WriteFile("target", "old");
    fs::permissions("target", fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("target", "link");
    WriteFile("from", "new");
    EXPECT_EQ(ReplaceAtomically("from", "link"), kDone);
    EXPECT_EQ(FileContent("target"), "new");
    EXPECT_TRUE(fs::is_symlink("link"));
    EXPECT_EQ(fs::status("target").permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST(ReplaceAtomically, keepsTheOwnerAndTheGroupOfTheTarget) {
    const TemporaryFolder folder;
    WriteFile("target", "old");
    WriteFile("from", "new");
    if (chown("target", 12345, 54321) != 0)
        GTEST_SKIP() << "this user cannot change owners";
    fs::permissions("target", fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(ReplaceAtomically("from", "target"), kDone);
    EXPECT_EQ(FileContent("target"), "new");
    struct stat state {};
    ASSERT_EQ(stat("target", &state), 0);
    EXPECT_EQ(state.st_uid, 12345U);
    EXPECT_EQ(state.st_gid, 54321U);
    EXPECT_EQ(state.st_mode & 07777U, 0600U);
    WriteFile("from", "other group alone");
    ASSERT_EQ(chown("target", getuid(), 54321), 0);
    EXPECT_EQ(ReplaceAtomically("from", "target"), kDone);
    ASSERT_EQ(stat("target", &state), 0);
    EXPECT_EQ(state.st_gid, 54321U);
    EXPECT_EQ(ReplaceAtomically("missing", "target"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(FileContent("target"), "other group alone");
}

TEST(ReplaceAtomically, refusesAnythingButAFile) {
    const TemporaryFolder folder;
    WriteFile("from", "new");
    EXPECT_EQ(ReplaceAtomically("from", "missing"), std::errc::no_such_file_or_directory);
    fs::create_directory("folder");
    EXPECT_EQ(ReplaceAtomically("from", "folder"), std::errc::not_supported);
    EXPECT_EQ(ReplaceAtomically("missing", "from"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(FileContent("from"), "new");
}

/// Larger than a chunk and than the amount of one copy call.
std::string ManyBytes() {
    std::string bytes;
    for (unsigned i = 0; i < 300'000; ++i)
        bytes += static_cast<char>(i * 7919 >> 3);
    return bytes;
}

TEST(CopyAtomically, copiesEveryByte) {
    const TemporaryFolder folder;
    for (const std::string& content :
         {std::string(), std::string("x"), std::string(65'536, 'y'), ManyBytes()}) {
        WriteFile("from", content);
        EXPECT_EQ(CopyAtomically("from", "to"), kDone);
        EXPECT_TRUE(FileContent("to") == content);
        EXPECT_TRUE(FileContent("from") == content);
    }
}

/// Files that report size 0 and are not empty are read to their end; such a copy is not the announced
/// file.
TEST(CopyAtomically, refusesAFileOfAnotherSize) {
    const TemporaryFolder folder;
    WriteFile("to", "old");
    EXPECT_EQ(CopyAtomically("/proc/self/status", "to"), std::errc::resource_unavailable_try_again);
    EXPECT_EQ(FileContent("to"), "old");
}

TEST(CopyAtomically, keepsTheTargetOnAFullDisk) {
    const TemporaryFolder folder;
    WriteFile("from", ManyBytes());
    WriteFile("to", "old");
    for (const rlim_t size : {rlim_t{0}, rlim_t{1}, rlim_t{65'536}, rlim_t{299'999}}) {
        const FileSizeLimit full(size);
        EXPECT_EQ(CopyAtomically("from", "to"), std::errc::file_too_large) << size;
        EXPECT_EQ(FileContent("to"), "old");
    }
    EXPECT_EQ(std::distance(fs::directory_iterator("."), fs::directory_iterator()), 2);
}

TEST(CopyAtomically, refusesAnythingButAFile) {
    const TemporaryFolder folder;
    fs::create_directory("folder");
    EXPECT_EQ(CopyAtomically("missing", "to"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(CopyAtomically("folder", "to"), std::errc::is_a_directory);
    WriteFile("from", "new");
    EXPECT_EQ(CopyAtomically("from", "folder"), std::errc::is_a_directory);
    EXPECT_EQ(CopyAtomically("from", "missing/to"), std::errc::no_such_file_or_directory);
}

} // namespace
