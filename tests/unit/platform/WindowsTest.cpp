#include "LockFolders.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <algorithm>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include <windows.h>

namespace {

class MutexTest : public ::testing::Test {
  protected:
    MutexTest() : instance(folder.Path("instance")) {
        ::mkdir(instance.c_str(), 0700);
        ::setenv("CORVANE_INSTANCE", instance.c_str(), 1);
    }

    /// Runs `work` in a separate process, which then keeps its resources until it is killed.
    template<typename Work>
    static pid_t holdInChild(Work work) {
        int ready[2];
        if (::pipe(ready) != 0)
            return -1;
        const pid_t child = ::fork();
        if (child == 0) {
            work();
            const char byte = 'r';
            if (::write(ready[1], &byte, 1) != 1)
                ::_exit(1);
            for (;;)
                ::pause();
        }
        ::close(ready[1]);
        char byte = 0;
        EXPECT_EQ(::read(ready[0], &byte, 1), 1);
        ::close(ready[0]);
        return child;
    }

    static void kill(pid_t child) {
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
    }

    TemporaryFolder folder;
    std::string instance;
};

TEST_F(MutexTest, firstCreatesItAndSecondFindsIt) {
    const HANDLE first = CreateMutexW(nullptr, FALSE, L"corvane");
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    const HANDLE second = CreateMutexW(nullptr, FALSE, L"corvane");
    EXPECT_NE(second, nullptr);
    EXPECT_EQ(GetLastError(), 183U);
    EXPECT_EQ(CloseHandle(second), TRUE);
    EXPECT_EQ(CloseHandle(first), TRUE);
}

TEST_F(MutexTest, closingTheSecondHandleKeepsTheFirst) {
    const HANDLE first = CreateMutexW(nullptr, FALSE, L"corvane");
    CloseHandle(CreateMutexW(nullptr, FALSE, L"corvane"));
    const HANDLE third = CreateMutexW(nullptr, FALSE, L"corvane");
    EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
    CloseHandle(third);
    CloseHandle(first);
}

TEST_F(MutexTest, closedOneCanBeCreatedAgain) {
    CloseHandle(CreateMutexW(nullptr, FALSE, L"corvane"));
    const HANDLE again = CreateMutexW(nullptr, FALSE, L"corvane");
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    CloseHandle(again);
}

TEST_F(MutexTest, otherNamesAreOtherMutexes) {
    const HANDLE one = CreateMutexW(nullptr, FALSE, L"corvane");
    const HANDLE other = CreateMutexW(nullptr, FALSE, L"corvane-2");
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    CloseHandle(other);
    CloseHandle(one);
}

TEST_F(MutexTest, otherArgumentsAreRefused) {
    EXPECT_EQ(CreateMutexW(nullptr, FALSE, nullptr), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(CreateMutexW(nullptr, TRUE, L"corvane"), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST_F(MutexTest, namesThatCouldLeaveTheFolderAreRefused) {
    const std::wstring tooLong(101, L'x');
    for (const wchar_t* const name : {L"", L"a/b", L"..", L".hidden", L"a\\b", L"ä", tooLong.c_str()}) {
        EXPECT_EQ(CreateMutexW(nullptr, FALSE, name), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_NAME);
    }
    EXPECT_TRUE(::rmdir(instance.c_str()) == 0); // nothing was made in it
}

TEST_F(MutexTest, nullHandleCannotBeClosed) {
    EXPECT_EQ(CloseHandle(nullptr), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST_F(MutexTest, killedHolderReleasesIt) {
    const pid_t child = holdInChild([] { CreateMutexW(nullptr, FALSE, L"corvane"); });
    const HANDLE whileHeld = CreateMutexW(nullptr, FALSE, L"corvane");
    EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
    CloseHandle(whileHeld);
    kill(child);
    const HANDLE after = CreateMutexW(nullptr, FALSE, L"corvane");
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    CloseHandle(after);
}

TEST_F(MutexTest, exactlyOneOfFiftyConcurrentCallersCreatesIt) {
    int start[2];
    int results[2];
    ASSERT_EQ(::pipe(start), 0);
    ASSERT_EQ(::pipe(results), 0);
    std::vector<pid_t> children;
    for (int i = 0; i < 50; ++i) {
        children.push_back(::fork());
        if (children.back() != 0)
            continue;
        ::close(start[1]);
        char byte = 0;
        if (::read(start[0], &byte, 1) != 0) // until all are ready
            ::_exit(1);
        const HANDLE mutex = CreateMutexW(nullptr, FALSE, L"corvane");
        byte = mutex == nullptr ? 'f' : GetLastError() == ERROR_ALREADY_EXISTS ? 'e' : 'm';
        if (::write(results[1], &byte, 1) != 1)
            ::_exit(1);
        for (;;)
            ::pause();
    }
    ::close(start[1]);
    std::string answers(50, '?');
    for (char& answer : answers)
        ASSERT_EQ(::read(results[0], &answer, 1), 1);
    for (const pid_t child : children)
        kill(child);
    EXPECT_EQ(std::count(answers.begin(), answers.end(), 'm'), 1) << answers;
    EXPECT_EQ(std::count(answers.begin(), answers.end(), 'e'), 49) << answers;
}

TEST_F(MutexTest, childProcessesDoNotInheritIt) {
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, L"corvane");
    const pid_t child = ::fork();
    if (child == 0) {
        ::execl("/bin/sleep", "sleep", "60", nullptr);
        ::_exit(1);
    }
    // The child releases it by exec; the new command line shows that it has.
    const std::string commandLine = "/proc/" + std::to_string(child) + "/comm";
    while (FileContent(commandLine) != "sleep\n")
        ::usleep(1000);
    CloseHandle(mutex);
    const HANDLE again = CreateMutexW(nullptr, FALSE, L"corvane");
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    CloseHandle(again);
    kill(child);
}

TEST_F(MutexTest, lockFileIsPrivateAndStays) {
    CloseHandle(CreateMutexW(nullptr, FALSE, L"corvane"));
    struct stat state {};
    ASSERT_EQ(::stat((instance + "/corvane.lock").c_str(), &state), 0);
    EXPECT_EQ(state.st_mode, static_cast<mode_t>(S_IFREG | S_ISVTX | 0600));
}

TEST_F(MutexTest, linkInPlaceOfTheLockFileIsNotFollowed) {
    WriteFile(folder.Path("precious"), "keep");
    ASSERT_EQ(::symlink(folder.Path("precious").c_str(), (instance + "/corvane.lock").c_str()), 0);
    EXPECT_EQ(CreateMutexW(nullptr, FALSE, L"corvane"), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    struct stat state {};
    ::stat(folder.Path("precious").c_str(), &state);
    EXPECT_EQ(state.st_mode & S_ISVTX, 0U);
    EXPECT_EQ(FileContent(folder.Path("precious")), "keep");
}

TEST_F(MutexTest, folderInPlaceOfTheLockFileIsRefused) {
    ::mkdir((instance + "/corvane.lock").c_str(), 0700);
    EXPECT_EQ(CreateMutexW(nullptr, FALSE, L"corvane"), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
}

TEST_F(MutexTest, pipeInPlaceOfTheLockFileIsRefused) {
    ASSERT_EQ(::mkfifo((instance + "/corvane.lock").c_str(), 0600), 0);
    EXPECT_EQ(CreateMutexW(nullptr, FALSE, L"corvane"), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
}

TEST_F(MutexTest, otherInstanceFoldersHaveOtherMutexes) {
    const HANDLE one = CreateMutexW(nullptr, FALSE, L"corvane");
    ::mkdir("other", 0700);
    ::setenv("CORVANE_INSTANCE", folder.Path("other").c_str(), 1);
    const HANDLE other = CreateMutexW(nullptr, FALSE, L"corvane");
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    CloseHandle(other);
    CloseHandle(one);
}

TEST_F(MutexTest, instanceFolderThatOthersMayEnterIsRefused) {
    ASSERT_EQ(::symlink(instance.c_str(), folder.Path("link").c_str()), 0);
    ::mkdir("open", 0700);
    ::chmod("open", 0755);
    ::mkdir("group", 0700);
    ::chmod("group", 0710);
    ::mkdir("relative", 0700);
    for (const std::string& given : {folder.Path("absent"), folder.Path("link"), folder.Path("open"),
                                     folder.Path("group"), std::string("relative")}) {
        ::setenv("CORVANE_INSTANCE", given.c_str(), 1);
        EXPECT_EQ(CreateMutexW(nullptr, FALSE, L"corvane"), nullptr) << given;
        EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED) << given;
        EXPECT_NE(::access((given + "/corvane.lock").c_str(), F_OK), 0) << given;
    }
}

/// Its files have a unique name in the user's real folders and are removed afterwards.
TEST_F(MutexTest, isPerUserForAnyRuntimeDirectory) {
    const std::string name = "corvane-test-" + std::to_string(::getpid());
    const std::wstring wide(name.begin(), name.end());
    ::unsetenv("CORVANE_INSTANCE");
    ::unsetenv("XDG_RUNTIME_DIR");
    const HANDLE first = CreateMutexW(nullptr, FALSE, wide.c_str());
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    for (const std::string& given :
         {instance, folder.Path("absent"), std::string("relative"), std::string()}) {
        ::setenv("XDG_RUNTIME_DIR", given.c_str(), 1);
        const HANDLE second = CreateMutexW(nullptr, FALSE, wide.c_str());
        EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS) << given;
        CloseHandle(second);
    }
    CloseHandle(first);
    EXPECT_TRUE(::rmdir(instance.c_str()) == 0); // nothing was made in it
    for (const FolderHandle& place : OpenLockFolders())
        EXPECT_EQ(::unlinkat(place.Number(), (name + ".lock").c_str(), 0), 0);
}

TEST(FopenSTest, opensTruncatesAndReportsFailures) {
    const TemporaryFolder folder;
    WriteFile("log", "old");
    std::FILE* file = nullptr;
    ASSERT_EQ(fopen_s(&file, "log", "w+"), 0);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(FileContent("log"), "");
    std::fclose(file);
    EXPECT_EQ(fopen_s(&file, ".", "w+"), EISDIR);
    EXPECT_EQ(file, nullptr);
    EXPECT_EQ(fopen_s(&file, "no/log", "w+"), ENOENT);
    EXPECT_EQ(fopen_s(nullptr, "log", "w+"), EINVAL);
    file = stderr;
    EXPECT_EQ(fopen_s(&file, nullptr, "w+"), EINVAL);
    EXPECT_EQ(file, nullptr);
}

TEST(FopenSTest, childProcessesDoNotInheritTheFile) {
    const TemporaryFolder folder;
    std::FILE* file = nullptr;
    ASSERT_EQ(fopen_s(&file, "log", "w+"), 0);
    EXPECT_NE(::fcntl(::fileno(file), F_GETFD) & FD_CLOEXEC, 0);
    std::fclose(file);
}

TEST(TickCountTest, countsMilliseconds) {
    const auto before = std::chrono::steady_clock::now();
    const DWORD first = GetTickCount();
    DWORD passed = 0;
    do {
        passed = GetTickCount() - first;
    } while (passed < 20);
    const auto elapsed = std::chrono::steady_clock::now() - before;
    EXPECT_GE(elapsed, std::chrono::milliseconds(19));
}

TEST(TickCountTest, isMonotonic) {
    const auto now = [] {
        timespec time{};
        ::clock_gettime(CLOCK_MONOTONIC, &time);
        return static_cast<DWORD>(time.tv_sec * 1000 + time.tv_nsec / 1'000'000);
    };
    const DWORD before = now();
    const DWORD ticks = GetTickCount();
    const DWORD after = now();
    EXPECT_LE(ticks - before, after - before);
}

/// A time zone where it is afternoon.
TEST(TimeFormatTest, formatsTwentyFourHoursOfLocalTime) {
    const std::time_t now = std::time(nullptr);
    std::tm world{};
    gmtime_r(&now, &world);
    const int east = 13 - world.tm_hour; // the hour there is 13, or 14 if it changes during the test
    ::setenv("TZ", ("Place" + std::to_string(-east)).c_str(), 1);
    ::tzset();
    char text[200];
    EXPECT_EQ(GetTimeFormatA(LOCALE_USER_DEFAULT, 0, nullptr, "HH':'mm':'ss", text, sizeof text), 9);
    ::unsetenv("TZ");
    ::tzset();
    EXPECT_THAT(std::string(text).substr(0, 3), ::testing::AnyOf("13:", "14:"));
}

TEST(TimeFormatTest, writesTheLocalTimeOfNow) {
    char text[200];
    const std::time_t before = std::time(nullptr);
    ASSERT_EQ(GetTimeFormatA(LOCALE_USER_DEFAULT, 0, nullptr, "HH':'mm':'ss", text, sizeof text), 9);
    const std::time_t after = std::time(nullptr);
    bool found = false;
    for (std::time_t time = before; time <= after && !found; ++time) {
        char expected[16];
        std::tm local{};
        localtime_r(&time, &local);
        std::snprintf(expected, sizeof expected, "%02u:%02u:%02u", static_cast<unsigned>(local.tm_hour) % 24,
                      static_cast<unsigned>(local.tm_min) % 60, static_cast<unsigned>(local.tm_sec) % 61);
        found = std::string(text) == expected;
    }
    EXPECT_TRUE(found) << text;
}

TEST(TimeFormatTest, refusesUnknownFormats) {
    char text[200];
    EXPECT_EQ(GetTimeFormatA(LOCALE_USER_DEFAULT, 0, nullptr, "HH':'mm':'ss", text, 8), 0);
    EXPECT_EQ(GetTimeFormatA(LOCALE_USER_DEFAULT, 0, nullptr, "HH':'mm':'ss", text, 0), 0);
    EXPECT_EQ(GetTimeFormatA(LOCALE_USER_DEFAULT, 1, nullptr, "HH':'mm':'ss", text, sizeof text), 0);
    EXPECT_EQ(GetTimeFormatA(LOCALE_USER_DEFAULT, 0, nullptr, "hh", text, sizeof text), 0);
}

} // namespace
