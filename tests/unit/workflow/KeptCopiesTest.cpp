#include "workflow/KeptCopies.h"

#include "FileSizeLimit.h"
#include "FixedTime.h"
#include "FolderTree.h"
#include "LogCapture.h"
#include "OrdinaryUser.h"
#include "TemporaryFolder.h"
#include "workflow/KeptFolder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

using Tree = std::map<std::string, std::string>;

class KeptCopiesTest : public testing::Test {
  protected:
    KeptCopies Copies(std::size_t most = 50, std::uint64_t bytes = 1'000'000) {
        return {kept, {most, bytes}, [this] { return now; }};
    }

    /// Keeps a file of this content, one second after the previous one.
    std::string Keep(KeptCopies& copies, const std::string& name, const std::string& content) {
        ++now;
        WriteFile(name, content);
        const std::optional<std::string> copy = copies.KeepFile(name, KeptReason::Deleted);
        return copy ? fs::path(*copy).filename().string() : "not kept";
    }

    /// Checks that nothing can be kept in this folder, and that the log gives this reason.
    void ExpectFailureIn(const std::string& folder, const std::string& reason) {
        fs::remove("a.trk"); // it may be another user's
        WriteFile("a.trk", "content");
        KeptCopies copies(folder, {}, [] { return kTime; });
        const std::string expected =
            "ERROR: Failed to keep " + kStamp + "a.trk (unsaved).trk in " + folder + ": ";
        const auto writer = [](const std::string& path) {
            WriteFile(path, "made");
            return true;
        };
        EXPECT_EQ(copies.KeepFile("a.trk", KeptReason::Unsaved), std::nullopt);
        EXPECT_THAT(log.Lines(), ElementsAre(AllOf(StartsWith(expected), HasSubstr(reason))));
        EXPECT_EQ(copies.KeepWritten("a.trk", KeptReason::Unsaved, writer), std::nullopt);
        EXPECT_THAT(log.Lines(), ElementsAre(AllOf(StartsWith(expected), HasSubstr(reason))));
        EXPECT_EQ(FileContent("a.trk"), "content");
    }

    static mode_t ModeOf(const std::string& path) {
        struct stat state {};
        EXPECT_EQ(stat(path.c_str(), &state), 0) << path;
        return state.st_mode;
    }

    TemporaryFolder folder;
    LogCapture log;
    TimeZone zone{"UTC0"};
    std::string kept = folder.Path("data größe/corvane/kept");
    std::time_t now = kTime;
};

TEST_F(KeptCopiesTest, keepAFileUnchanged) {
    const std::string content("Track  \0\r\n\xFF", 11);
    WriteFile("cover.trk", content);
    KeptCopies copies = Copies();
    EXPECT_EQ(copies.KeepFile(folder.Path("cover.trk"), KeptReason::Unsent),
              kept + "/" + kStamp + "cover.trk (unsent).trk");
    EXPECT_EQ(FolderTree(kept), (Tree{{kStamp + "cover.trk (unsent).trk", content}}));
    EXPECT_EQ(FileContent("cover.trk"), content);
    EXPECT_THAT(log.Lines(), ElementsAre("INFO: Kept " + kStamp + "cover.trk (unsent).trk"));
}

TEST_F(KeptCopiesTest, arePrivate) {
    umask(0);
    WriteFile("a.trk", "content");
    KeptCopies copies = Copies();
    mode_t whileWritten = 0;
    const auto writer = [&](const std::string& path) {
        whileWritten = ModeOf(path);
        WriteFile(path, "made");
        return true;
    };
    const std::string file = copies.KeepFile("a.trk", KeptReason::Deleted).value();
    const std::string made = copies.KeepWritten("a.trk", KeptReason::Unsaved, writer).value();
    EXPECT_EQ(whileWritten, static_cast<mode_t>(S_IFREG | 0600));
    EXPECT_EQ(ModeOf(file), static_cast<mode_t>(S_IFREG | 0600));
    EXPECT_EQ(ModeOf(made), static_cast<mode_t>(S_IFREG | 0600));
    for (const char* const made : {"data größe", "data größe/corvane", "data größe/corvane/kept"})
        EXPECT_EQ(ModeOf(made), static_cast<mode_t>(S_IFDIR | 0700));
}

TEST_F(KeptCopiesTest, areCountedWithinASecond) {
    WriteFile("a.trk", "content");
    KeptCopies copies = Copies();
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(copies.KeepFile("a.trk", KeptReason::Unsaved));
    EXPECT_TRUE(copies.KeepFile("a.trk", KeptReason::Deleted));
    EXPECT_EQ(FolderTree(kept), (Tree{{kStamp + "a.trk (unsaved).trk", "content"},
                                      {kStamp + "a.trk (unsaved 2).trk", "content"},
                                      {kStamp + "a.trk (unsaved 3).trk", "content"},
                                      {kStamp + "a.trk (deleted).trk", "content"}}));
}

TEST_F(KeptCopiesTest, canBeMadeByAWriter) {
    KeptCopies copies = Copies();
    const auto writer = [](const std::string& path) {
        WriteFile(path, "made");
        return true;
    };
    EXPECT_TRUE(copies.KeepWritten("/no/such/a.trk", KeptReason::Unsaved, writer));
    EXPECT_TRUE(copies.KeepWritten("a.trk", KeptReason::Crash, writer, ".csv"));
    EXPECT_EQ(FolderTree(kept),
              (Tree{{kStamp + "a.trk (unsaved).trk", "made"}, {kStamp + "a.trk (crash).csv", "made"}}));
}

TEST_F(KeptCopiesTest, areNotMadeByAWriterThatFails) {
    KeptCopies copies = Copies();
    const auto failing = [](const std::string& path) {
        WriteFile(path, "half");
        return false;
    };
    const auto throwing = [](const std::string&) -> bool { throw std::runtime_error("no idea"); };
    const auto removing = [](const std::string& path) { return fs::remove(Utf8Path(path)); };
    EXPECT_EQ(copies.KeepWritten("a.trk", KeptReason::Unsaved, failing), std::nullopt);
    EXPECT_EQ(copies.KeepWritten("a.trk", KeptReason::Unsaved, throwing), std::nullopt);
    EXPECT_EQ(copies.KeepWritten("a.trk", KeptReason::Unsaved, removing), std::nullopt);
    EXPECT_THAT(log.Lines(), ElementsAre(EndsWith(": its content could not be written"),
                                         EndsWith(": no idea"), EndsWith(": No such file or directory")));
    EXPECT_THAT(FolderTree(kept), IsEmpty());
}

TEST_F(KeptCopiesTest, areNotMadeOfAnUnreadableFile) {
    KeptCopies copies = Copies();
    fs::create_directory("folder.trk");
    EXPECT_EQ(copies.KeepFile("missing.trk", KeptReason::Deleted), std::nullopt);
    EXPECT_EQ(copies.KeepFile("folder.trk", KeptReason::Deleted), std::nullopt);
    EXPECT_EQ(copies.KeepFile("", KeptReason::Deleted), std::nullopt);
    EXPECT_THAT(log.Lines(),
                ElementsAre(EndsWith("missing.trk (deleted).trk in " + kept + ": No such file or directory"),
                            EndsWith(": Is a directory"), EndsWith(": No such file or directory")));
    EXPECT_THAT(FolderTree(kept), IsEmpty());
}

TEST_F(KeptCopiesTest, haveAValidNameForAnyOriginal) {
    KeptCopies copies = Copies();
    std::vector<std::string> names = {"line\nfeed.trk",
                                      ".hidden.trk",
                                      "...",
                                      " ",
                                      "%s%n.trk",
                                      "\xFF\xFE.trk",
                                      "-rf",
                                      "a (unsaved).trk",
                                      "\"'`$(x).trk",
                                      "tab\t\x01.trk",
                                      std::string(255, 'x'),
                                      std::string(251, 'y') + ".trk"};
    std::string wide;
    while (wide.size() + 3 <= 251)
        wide += "日";
    names.push_back(wide + ".trk");
    for (std::size_t i = 0; i < names.size(); ++i) {
        WriteFile(names[i], std::to_string(i));
        const auto copy = copies.KeepFile(folder.Path(names[i]), KeptReason::Unsaved);
        ASSERT_TRUE(copy) << names[i];
        EXPECT_EQ(FileContent(*copy), std::to_string(i)) << names[i];
        EXPECT_TRUE(KeptName::IsOne(fs::path(*copy).filename().string())) << *copy;
        EXPECT_THAT(log.Lines(), SizeIs(1)) << names[i];
    }
    EXPECT_THAT(FolderTree(kept), SizeIs(names.size()));
}

TEST_F(KeptCopiesTest, failWhereTheirFolderCannotBeMade) {
    WriteFile("file", "");
    ExpectFailureIn(folder.Path("file/kept"), "Not a directory");
    fs::create_symlink("nowhere", "link");
    ExpectFailureIn(folder.Path("link"), "File exists");
    ExpectFailureIn("", "No such file or directory");
    fs::create_directory("closed");
    fs::permissions("closed", fs::perms::owner_read | fs::perms::owner_exec);
    const OrdinaryUser user(".");
    ASSERT_TRUE(user.IsReady());
    ExpectFailureIn(folder.Path("closed/kept"), "Permission denied");
}

TEST_F(KeptCopiesTest, failWhereTheirFolderIsReadOnly) {
    fs::create_directory("kept");
    fs::permissions("kept", fs::perms::owner_read | fs::perms::owner_exec);
    const OrdinaryUser user(".");
    ASSERT_TRUE(user.IsReady());
    ExpectFailureIn(folder.Path("kept"), "Permission denied");
}

TEST_F(KeptCopiesTest, failWhereTheirFolderIsAFile) {
    WriteFile("kept", "precious");
    ExpectFailureIn(folder.Path("kept"), "Not a directory");
    EXPECT_EQ(FileContent("kept"), "precious");
}

TEST_F(KeptCopiesTest, leaveNothingOnAFullDisk) {
    WriteFile("a.trk", std::string(10'000, 'x'));
    KeptCopies copies = Copies();
    {
        const FileSizeLimit full(4096); // larger than the log
        EXPECT_EQ(copies.KeepFile("a.trk", KeptReason::Deleted), std::nullopt);
        EXPECT_THAT(log.Lines(), ElementsAre(EndsWith(": File too large")));
    }
    EXPECT_THAT(FolderTree(kept), IsEmpty());
    EXPECT_TRUE(copies.KeepFile("a.trk", KeptReason::Deleted));
}

TEST_F(KeptCopiesTest, areLimitedInNumber) {
    KeptCopies copies = Copies(3);
    std::vector<std::string> names;
    for (int i = 0; i < 5; ++i)
        names.push_back(Keep(copies, "a.trk", std::to_string(i)));
    EXPECT_EQ(FolderTree(kept), (Tree{{names[2], "2"}, {names[3], "3"}, {names[4], "4"}}));
    EXPECT_THAT(log.Lines(), testing::Contains("INFO: Removed the kept copy " + names[1]));
}

TEST_F(KeptCopiesTest, areLimitedInSize) {
    KeptCopies copies = Copies(50, 10);
    Keep(copies, "a.trk", "four");
    const std::string second = Keep(copies, "a.trk", "four");
    const std::string third = Keep(copies, "a.trk", "sixsix");
    EXPECT_EQ(FolderTree(kept), (Tree{{second, "four"}, {third, "sixsix"}}));
    // The oldest are removed first, even where removing a newer one alone would free enough space.
    const std::string fourth = Keep(copies, "a.trk", "fives");
    EXPECT_EQ(FolderTree(kept), (Tree{{fourth, "fives"}}));
}

TEST_F(KeptCopiesTest, stayWhenTheyAreTheNewest) {
    KeptCopies copies = Copies(50, 10);
    Keep(copies, "a.trk", "four");
    const std::string large = Keep(copies, "a.trk", "larger than all");
    EXPECT_EQ(FolderTree(kept), (Tree{{large, "larger than all"}}));
    KeptCopies none = Copies(0, 0);
    const std::string last = Keep(none, "a.trk", "x");
    EXPECT_EQ(FolderTree(kept), (Tree{{last, "x"}}));
}

TEST_F(KeptCopiesTest, stayWhenTheClockWasSetBack) {
    KeptCopies copies = Copies(2);
    Keep(copies, "a.trk", "0");
    const std::string second = Keep(copies, "a.trk", "1");
    now -= 86'400;
    const std::string newest = Keep(copies, "a.trk", "2");
    EXPECT_EQ(FolderTree(kept), (Tree{{second, "1"}, {newest, "2"}}));
}

TEST_F(KeptCopiesTest, areRemovedInOrderWithinASecond) {
    KeptCopies copies = Copies(2);
    for (int i = 0; i < 12; ++i) {
        --now; // Keep advances it
        Keep(copies, "a.trk", std::to_string(i));
    }
    std::vector<std::string> contents;
    for (const auto& [name, content] : FolderTree(kept))
        contents.push_back(content);
    EXPECT_THAT(contents, testing::UnorderedElementsAre("10", "11"));
}

TEST_F(KeptCopiesTest, areTheOnlyFilesThatAreCountedOrRemoved) {
    fs::create_directories(kept);
    const std::string old = "2001-01-01 01.01.01 ";
    WriteFile(kept + "/" + old + "mine.trk", std::string(1000, 'x'));
    WriteFile(kept + "/notes.txt", "precious");
    WriteFile(kept + "/.corvane-abc123", "half");
    fs::create_directory(kept + "/" + old + "a (unsaved).trk");
    fs::create_symlink("notes.txt", kept + "/" + old + "b (unsaved).trk");
    const Tree before = FolderTree(kept);
    KeptCopies copies = Copies(1, 10);
    Keep(copies, "a.trk", "first");
    const std::string second = Keep(copies, "a.trk", "second");
    Tree expected = before;
    expected[second] = "second";
    EXPECT_EQ(FolderTree(kept), expected);
}

/// Both keep copies of one name in one second, and remove the oldest.
TEST_F(KeptCopiesTest, areSharedByTwoEditors) {
    constexpr int kCopies = 40;
    constexpr std::size_t kMost = 60;
    WriteFile("a.trk", std::string(5000, 'a'));
    const auto keepMany = [&] {
        KeptCopies copies = Copies(kMost);
        bool all = true;
        for (int i = 0; i < kCopies; ++i)
            all = copies.KeepFile("a.trk", KeptReason::Deleted) && all;
        return all;
    };
    const pid_t child = fork();
    if (child == 0)
        _exit(keepMany() ? 0 : 1);
    EXPECT_TRUE(keepMany());
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    const Tree tree = FolderTree(kept);
    EXPECT_EQ(tree.size(), kMost);
    for (const auto& [name, content] : tree)
        EXPECT_TRUE(KeptName::IsOne(name) && content == std::string(5000, 'a')) << name;
}

TEST_F(KeptCopiesTest, areInTheFolderThatTheEnvironmentNames) {
    setenv("CORVANE_KEPT", "/somewhere else", 1);
    EXPECT_EQ(DefaultKeptFolder(), "/somewhere else");
    setenv("CORVANE_KEPT", "here", 1);
    EXPECT_EQ(DefaultKeptFolder(), folder.Path("here"));
    unsetenv("CORVANE_KEPT");
    setenv("XDG_DATA_HOME", folder.Path("data").c_str(), 1);
    EXPECT_THAT(DefaultKeptFolder(), AllOf(StartsWith(folder.Path("data/")), EndsWith("/kept")));
    EXPECT_FALSE(fs::exists("data"));
}

} // namespace
