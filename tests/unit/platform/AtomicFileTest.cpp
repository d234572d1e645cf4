#include "basalt/AtomicFile.h"

#include "OrdinaryUser.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

// The linker replaces the system's functions by these (see --wrap in CMakeLists.txt).
int ScriptedSync(int descriptor) __asm__("__wrap_fsync");
int RealSync(int descriptor) __asm__("__real_fsync");
ssize_t ShortWrite(int descriptor, const void* data, std::size_t size) __asm__("__wrap_write");
ssize_t RealWrite(int descriptor, const void* data, std::size_t size) __asm__("__real_write");
int RefusedMode(int descriptor, mode_t mode) __asm__("__wrap_fchmod");
int RealMode(int descriptor, mode_t mode) __asm__("__real_fchmod");

namespace {

bool modesAreRefused = false;

/// The errors of the next calls, the last one first; 0 for none.
std::vector<int> syncFailures;

/// The maximum size of a write, of which every other one is interrupted; 0 for normal writes.
std::size_t maxBytesWritten = 0;
int writes = 0;

} // namespace

int RefusedMode(int descriptor, mode_t mode) {
    if (!modesAreRefused)
        return RealMode(descriptor, mode);
    errno = EPERM;
    return -1;
}

ssize_t ShortWrite(int descriptor, const void* data, std::size_t size) {
    if (maxBytesWritten == 0)
        return RealWrite(descriptor, data, size);
    if (++writes % 2 == 0) {
        errno = EINTR;
        return -1;
    }
    return RealWrite(descriptor, data, std::min(size, maxBytesWritten));
}

int ScriptedSync(int descriptor) {
    const int failure = syncFailures.empty() ? 0 : syncFailures.back();
    if (!syncFailures.empty())
        syncFailures.pop_back();
    errno = failure;
    return failure != 0 ? -1 : RealSync(descriptor);
}

namespace {

std::size_t EntriesHere() {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("."))
        ++count;
    return count;
}

TEST(AtomicFile, appearsWithItsContentWhenCommitted) {
    const TemporaryFolder folder;
    AtomicFile file("new.trk");
    ASSERT_TRUE(file.IsOpen());
    file.Write("Hello ");
    file.Write("there");
    EXPECT_FALSE(std::filesystem::exists("new.trk"));
    EXPECT_TRUE(file.Commit());
    EXPECT_EQ(FileContent("new.trk"), "Hello there");
    EXPECT_EQ(EntriesHere(), 1U);
}

TEST(AtomicFile, keepsTheOldFileUntilCommitted) {
    const TemporaryFolder folder;
    WriteFile("a.trk", "old");
    {
        AtomicFile file("a.trk");
        file.Write(std::string(1'000'000, 'x'));
        EXPECT_EQ(FileContent("a.trk"), "old");
    }
    EXPECT_EQ(FileContent("a.trk"), "old");
    EXPECT_EQ(EntriesHere(), 1U);
}

TEST(AtomicFile, keepsTheOrderOfSmallAndLargeWrites) {
    const TemporaryFolder folder;
    std::string expected;
    AtomicFile file("a");
    for (const std::size_t size : {1U, 65'535U, 65'536U, 3U, 200'000U, 0U, 7U}) {
        const std::string piece(size, static_cast<char>('a' + expected.size() % 26));
        file.Write(piece);
        expected += piece;
    }
    ASSERT_TRUE(file.Commit());
    EXPECT_EQ(FileContent("a"), expected);
}

TEST(AtomicFile, isCompleteAfterPartialWrites) {
    const TemporaryFolder folder;
    std::string content;
    for (int i = 0; i < 30'000; ++i)
        content += std::to_string(i);
    AtomicFile file("a");
    maxBytesWritten = 777;
    file.Write(content);
    file.Write("the end");
    const bool done = file.Commit();
    maxBytesWritten = 0;
    EXPECT_TRUE(done);
    EXPECT_TRUE(FileContent("a") == content + "the end");
}

TEST(AtomicFile, keepsThePermissionsOfTheFileItReplaces) {
    const TemporaryFolder folder;
    WriteFile("a.trk", "old");
    ASSERT_EQ(chmod("a.trk", 0640), 0);
    AtomicFile file("a.trk");
    file.Write("new");
    ASSERT_TRUE(file.Commit());
    struct stat state {};
    ASSERT_EQ(stat("a.trk", &state), 0);
    EXPECT_EQ(state.st_mode & 0777U, 0640U);
}

TEST(AtomicFile, writesThroughALinkToTheFileItNames) {
    const TemporaryFolder folder;
    WriteFile("real.trk", "old");
    std::filesystem::create_symlink("real.trk", "link.trk");
    AtomicFile file("link.trk");
    file.Write("new");
    ASSERT_TRUE(file.Commit());
    EXPECT_TRUE(std::filesystem::is_symlink("link.trk"));
    EXPECT_EQ(FileContent("real.trk"), "new");
}

struct stat StateOf(const char* path) {
    struct stat state {};
    EXPECT_EQ(stat(path, &state), 0);
    return state;
}

void Replace(const char* path) {
    AtomicFile file(path);
    file.Write("new");
    ASSERT_TRUE(file.Commit());
    EXPECT_EQ(FileContent(path), "new");
}

TEST(AtomicFile, keepsTheOwnerAndGroupOfTheFileItReplaces) {
    const TemporaryFolder folder;
    WriteFile("a.trk", "old");
    if (chown("a.trk", 12345, 54321) != 0)
        GTEST_SKIP() << "this user cannot change owners";
    ASSERT_EQ(chmod("a.trk", 0640), 0);
    Replace("a.trk");
    EXPECT_EQ(StateOf("a.trk").st_uid, 12345U);
    EXPECT_EQ(StateOf("a.trk").st_gid, 54321U);
    EXPECT_EQ(StateOf("a.trk").st_mode & 0777U, 0640U);
}

TEST(AtomicFile, keepsTheGroupWhereOnlyThatIsAllowed) {
    const TemporaryFolder folder;
    WriteFile("a.trk", "old");
    if (chown("a.trk", 12345, 0) != 0)
        GTEST_SKIP() << "this user cannot change owners";
    ASSERT_EQ(chmod(".", 02777), 0); // new files get the folder's group
    ASSERT_EQ(chmod("a.trk", 0666), 0);
    {
        const OrdinaryUser user("."); // still in root's group
        ASSERT_TRUE(user.IsReady());
        Replace("a.trk");
    }
    EXPECT_EQ(StateOf("a.trk").st_gid, 0U);
    EXPECT_EQ(StateOf("a.trk").st_mode & 0777U, 0666U);
}

TEST(AtomicFile, givesANewGroupOnlyThePermissionsOfOthers) {
    const TemporaryFolder folder;
    for (const auto& [before, after] : {std::pair{0666U, 0666U}, {0676U, 0666U}, {0646U, 0646U}}) {
        WriteFile("a.trk", "old");
        if (chown("a.trk", 12345, 54321) != 0)
            GTEST_SKIP() << "this user cannot change owners";
        ASSERT_EQ(chmod("a.trk", before), 0);
        {
            const OrdinaryUser user(".");
            ASSERT_TRUE(user.IsReady());
            Replace("a.trk");
        }
        EXPECT_NE(StateOf("a.trk").st_gid, 54321U);
        EXPECT_EQ(StateOf("a.trk").st_mode & 0777U, after);
    }
}

/// Why a file is not replaced when the sync of the file and that of its folder fail with these.
std::error_code FailureOf(int fileFailure, int folderFailure) {
    WriteFile("a.trk", "old");
    syncFailures = {folderFailure, fileFailure};
    AtomicFile file("a.trk");
    file.Write("new");
    const bool done = file.Commit();
    syncFailures.clear();
    EXPECT_EQ(done, !file.Failure());
    return file.Failure();
}

TEST(AtomicFile, isSyncedBeforeItIsRenamed) {
    const TemporaryFolder folder;
    for (const int failure : {EIO, ENOSPC, EINVAL}) {
        EXPECT_EQ(FailureOf(failure, 0).value(), failure);
        EXPECT_EQ(FileContent("a.trk"), "old");
        EXPECT_EQ(EntriesHere(), 1U);
    }
}

TEST(AtomicFile, reportsAFailedSyncOfTheFolder) {
    const TemporaryFolder folder;
    EXPECT_EQ(FailureOf(0, EIO).value(), EIO);
    EXPECT_EQ(FileContent("a.trk"), "new");
    EXPECT_EQ(EntriesHere(), 1U);
}

TEST(AtomicFile, succeedsWhereFoldersCannotBeSynced) {
    const TemporaryFolder folder;
    for (const int failure : {EINVAL, ENOTSUP}) {
        EXPECT_EQ(FailureOf(0, failure), std::error_code());
        EXPECT_EQ(FileContent("a.trk"), "new");
    }
}

TEST(AtomicFile, succeedsInAFolderThatCannotBeListed) {
    const TemporaryFolder folder;
    const OrdinaryUser user(".");
    ASSERT_TRUE(user.IsReady());
    std::filesystem::create_directory("box");
    ASSERT_EQ(chmod("box", 0300), 0);
    Replace("box/a.trk");
    Replace("box/a.trk");
    ASSERT_EQ(chmod("box", 0700), 0);
}

TEST(AtomicFile, doesNotSetPermissionsThatAreAlreadyRight) {
    const TemporaryFolder folder;
    WriteFile("a.trk", "old");
    ASSERT_EQ(chmod("a.trk", 0600), 0);
    modesAreRefused = true;
    const bool done = !FailureOf(0, 0);
    modesAreRefused = false;
    EXPECT_TRUE(done);
    EXPECT_EQ(FileContent("a.trk"), "new");
    ASSERT_EQ(chmod("a.trk", 0640), 0);
    modesAreRefused = true;
    const bool doneAgain = !FailureOf(0, 0);
    modesAreRefused = false;
    EXPECT_FALSE(doneAgain) << "others would lose their access";
    EXPECT_EQ(FileContent("a.trk"), "old");
    EXPECT_EQ(EntriesHere(), 1U);
}

TEST(AtomicFile, createsTheMissingTargetOfALink) {
    const TemporaryFolder folder;
    std::filesystem::create_directory("there");
    std::filesystem::create_symlink("there/second", "first");
    std::filesystem::create_symlink("real.trk", "there/second");
    Replace("first");
    EXPECT_TRUE(std::filesystem::is_symlink("first"));
    EXPECT_TRUE(std::filesystem::is_symlink("there/second"));
    EXPECT_EQ(FileContent("there/real.trk"), "new");
}

TEST(AtomicFile, isNotOpenedThroughCyclicOrTooManyLinks) {
    const TemporaryFolder folder;
    std::filesystem::create_symlink("ring2", "ring1");
    std::filesystem::create_symlink("ring1", "ring2");
    WriteFile("0", "old");
    for (int i = 1; i <= 50; ++i)
        std::filesystem::create_symlink(std::to_string(i - 1), std::to_string(i));
    for (const char* const name : {"ring1", "50"}) {
        AtomicFile file(name);
        EXPECT_FALSE(file.IsOpen()) << name;
        file.Write("new");
        EXPECT_FALSE(file.Commit());
    }
    EXPECT_TRUE(std::filesystem::is_symlink("ring1"));
    EXPECT_TRUE(std::filesystem::is_symlink("10"));
    EXPECT_EQ(FileContent("0"), "old");
    EXPECT_EQ(EntriesHere(), 53U);
}

TEST(AtomicFile, newFileHasThePermissionsOfTheMask) {
    const TemporaryFolder folder;
    const mode_t before = umask(027);
    Replace("a.trk");
    umask(before);
    EXPECT_EQ(StateOf("a.trk").st_mode & 07777U, 0640U);
}

TEST(AtomicFile, keepsNoPermissionsBeyond0777) {
    const TemporaryFolder folder;
    WriteFile("a.trk", "old");
    ASSERT_EQ(chmod("a.trk", 04711), 0);
    Replace("a.trk");
    EXPECT_EQ(StateOf("a.trk").st_mode & 07777U, 0711U);
}

TEST(AtomicFile, isNotOpenedWhereNoFileCanBe) {
    const TemporaryFolder folder;
    std::filesystem::create_directory("folder");
    ASSERT_EQ(mkfifo("fifo", 0600), 0);
    WriteFile("file", "");
    for (const auto& [path, reason] :
         {std::pair{"folder", std::errc::is_a_directory},
          std::pair{"missing/a.trk", std::errc::no_such_file_or_directory},
          std::pair{"file/a.trk", std::errc::not_a_directory}, std::pair{"fifo", std::errc::not_supported}}) {
        const AtomicFile file(path);
        EXPECT_FALSE(file.IsOpen()) << path;
        EXPECT_EQ(file.Failure(), reason) << path;
    }
    AtomicFile closed("missing/a.trk");
    closed.Write("x");
    EXPECT_FALSE(closed.Commit());
}

} // namespace
