#include "LockFolders.h"

#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class LockFoldersTest : public testing::Test {
  protected:
    LockFoldersTest() {
        ::unsetenv("CORVANE_INSTANCE");
        std::filesystem::create_directories("runtime");
        std::filesystem::create_directories("shared");
    }

    void MakeRuntimeFolder() const { ::mkdir(("runtime/" + user).c_str(), 0700); }

    [[nodiscard]] std::vector<std::string> Opened() const { return PathsOf(OpenLockFolders(roots)); }

    /// Relative to the test's folder.
    [[nodiscard]] std::vector<std::string> PathsOf(const std::vector<FolderHandle>& folders) const {
        std::vector<std::string> paths;
        for (const FolderHandle& place : folders) {
            const std::filesystem::path link = "/proc/self/fd/" + std::to_string(place.Number());
            paths.push_back(
                std::filesystem::relative(std::filesystem::read_symlink(link), folder.Path("")).string());
        }
        return paths;
    }

    static std::vector<std::string> NamesIn(const std::string& place) {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(place))
            names.push_back(entry.path().filename());
        return names;
    }

    TemporaryFolder folder;
    const std::string user = std::to_string(::geteuid());
    const std::string name = "corvane-" + user;
    const LockFolderRoots roots{"runtime", "shared"};
};

TEST_F(LockFoldersTest, areTheRuntimeFolderAndASharedOne) {
    MakeRuntimeFolder();
    EXPECT_THAT(Opened(), ElementsAre("runtime/" + user, "shared/" + name));
    EXPECT_THAT(Opened(), ElementsAre("runtime/" + user, "shared/" + name));
    struct stat state {};
    ASSERT_EQ(::stat(("shared/" + name).c_str(), &state), 0);
    EXPECT_EQ(state.st_mode, static_cast<mode_t>(S_IFDIR | 0700));
}

TEST_F(LockFoldersTest, doNotDependOnTheEnvironment) {
    for (const char* const given : {"/run/user/0", "relative", ""}) {
        ::setenv("XDG_RUNTIME_DIR", given, 1);
        ::setenv("TMPDIR", given, 1);
        ::setenv("HOME", given, 1);
        ::setenv("CORVANE_INSTANCE", "", 1);
        EXPECT_THAT(Opened(), ElementsAre("shared/" + name));
    }
}

TEST_F(LockFoldersTest, omitARuntimeFolderThatOthersMayEnter) {
    MakeRuntimeFolder();
    ::chmod(("runtime/" + user).c_str(), 0710);
    EXPECT_THAT(Opened(), ElementsAre("shared/" + name));
}

/// For anything that others put under the user's name.
TEST_F(LockFoldersTest, useAnotherNameWhereTheirsIsTaken) {
    const std::string taken = "shared/" + name;
    const std::vector<std::function<void()>> obstacles = {
        [&] { WriteFile(taken, ""); },
        [&] { std::filesystem::create_directory_symlink(folder.Path("runtime"), taken); },
        [&] {
            ::mkdir(taken.c_str(), 0700);
            ::chmod(taken.c_str(), 0777);
        },
        [&] {
            ::mkdir(taken.c_str(), 0700);
            if (::chown(taken.c_str(), 65534, 65534) != 0) // only root can
                ::chmod(taken.c_str(), 0755);
        }};
    for (const auto& putInTheWay : obstacles) {
        putInTheWay();
        const std::vector<std::string> first = Opened();
        ASSERT_THAT(first, SizeIs(1));
        EXPECT_THAT(first[0], testing::StartsWith(taken + "."));
        EXPECT_EQ(Opened(), first);
        std::filesystem::remove_all("shared");
        std::filesystem::create_directory("shared");
    }
    EXPECT_THAT(NamesIn("runtime"), IsEmpty());
}

TEST_F(LockFoldersTest, areThisUsersOnly) {
    for (const char* const ending : {"", ".b", ".a", "0", "-x", "x.y"})
        ::mkdir(("shared/" + name + ending).c_str(), 0700);
    EXPECT_THAT(Opened(), ElementsAre("shared/" + name, "shared/" + name + ".a", "shared/" + name + ".b"));
}

TEST_F(LockFoldersTest, areEmptyWhereNoneCanBeMade) {
    std::filesystem::remove("shared");
    EXPECT_THAT(Opened(), IsEmpty());
    MakeRuntimeFolder();
    EXPECT_THAT(Opened(), ElementsAre("runtime/" + user));
}

TEST_F(LockFoldersTest, areOnlyTheInstancesFolder) {
    MakeRuntimeFolder();
    ::mkdir("instance", 0700);
    ::setenv("CORVANE_INSTANCE", folder.Path("instance").c_str(), 1);
    EXPECT_THAT(Opened(), ElementsAre("instance"));
    ::setenv("CORVANE_INSTANCE", "instance", 1);
    EXPECT_THAT(Opened(), IsEmpty());
    EXPECT_THAT(NamesIn("shared"), IsEmpty());
}

class TakeLockTest : public LockFoldersTest {};

TEST_F(TakeLockTest, locksInEveryFolder) {
    MakeRuntimeFolder();
    const std::vector<FolderHandle> both = OpenLockFolders(roots);
    std::vector<FileLock> locks;
    EXPECT_EQ(TakeLock(both, "a.lock", locks), FileLock::State::Taken);
    EXPECT_THAT(locks, SizeIs(2));
    for (const FolderHandle& place : both)
        EXPECT_EQ(FileLock(place, "a.lock").Result(), FileLock::State::HeldByAnother);
}

/// The runtime folder may appear and disappear between two starts.
TEST_F(TakeLockTest, failsWhenAnotherHoldsOneOfTheFolders) {
    std::vector<FileLock> locks;
    EXPECT_EQ(TakeLock(OpenLockFolders(roots), "a.lock", locks), FileLock::State::Taken);
    MakeRuntimeFolder();
    std::vector<FileLock> others;
    EXPECT_EQ(TakeLock(OpenLockFolders(roots), "a.lock", others), FileLock::State::HeldByAnother);
    EXPECT_THAT(others, IsEmpty());
    locks.clear();
    EXPECT_EQ(TakeLock(OpenLockFolders(roots), "a.lock", others), FileLock::State::Taken);
    std::filesystem::remove_all("runtime");
    EXPECT_EQ(TakeLock(OpenLockFolders(roots), "a.lock", locks), FileLock::State::HeldByAnother);
}

TEST_F(TakeLockTest, skipsAFolderThatCannotHoldTheLockFile) {
    MakeRuntimeFolder();
    ::mkdir(("runtime/" + user + "/a.lock").c_str(), 0700);
    std::vector<FileLock> locks;
    EXPECT_EQ(TakeLock(OpenLockFolders(roots), "a.lock", locks), FileLock::State::Taken);
    EXPECT_THAT(locks, SizeIs(1));
    std::filesystem::remove_all("shared");
    locks.clear();
    EXPECT_EQ(TakeLock(OpenLockFolders(roots), "a.lock", locks), FileLock::State::Failed);
    EXPECT_EQ(TakeLock({}, "a.lock", locks), FileLock::State::Failed);
}

/// All start where each must make a folder with a new name.
TEST_F(TakeLockTest, succeedsForExactlyOneOfManySimultaneousCallers) {
    WriteFile("shared/" + name, "in the way");
    constexpr int kProcesses = 20;
    int start[2];
    int results[2];
    ASSERT_EQ(::pipe(start), 0);
    ASSERT_EQ(::pipe(results), 0);
    std::vector<pid_t> children;
    for (int i = 0; i < kProcesses; ++i) {
        children.push_back(::fork());
        if (children.back() != 0)
            continue;
        ::close(start[1]);
        char byte = 0;
        if (::read(start[0], &byte, 1) != 0) // until all are ready
            ::_exit(1);
        std::vector<FileLock> locks;
        byte = TakeLock(OpenLockFolders(roots), "a.lock", locks) == FileLock::State::Taken ? 't' : 'h';
        if (::write(results[1], &byte, 1) != 1)
            ::_exit(1);
        for (;;)
            ::pause();
    }
    ::close(start[1]);
    std::string answers(kProcesses, '?');
    for (char& answer : answers)
        ASSERT_EQ(::read(results[0], &answer, 1), 1);
    for (const pid_t child : children) {
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
    }
    EXPECT_EQ(std::count(answers.begin(), answers.end(), 't'), 1) << answers;
}

} // namespace
