#include "WholeFile.h"

#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

#include <sys/stat.h>

namespace {

std::size_t EntriesHere() {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("."))
        ++count;
    return count;
}

TEST(WholeFile, appearsWithItsContentWhenCommitted) {
    const TemporaryFolder folder;
    WholeFile file("new.trk");
    ASSERT_TRUE(file.IsOpen());
    file.Write("Hello ");
    file.Write("there");
    EXPECT_FALSE(std::filesystem::exists("new.trk"));
    EXPECT_TRUE(file.Commit());
    EXPECT_EQ(FileContent("new.trk"), "Hello there");
    EXPECT_EQ(EntriesHere(), 1U);
}

TEST(WholeFile, leavesTheOldFileUntilItIsCommitted) {
    const TemporaryFolder folder;
    WriteFile("a.trk", "old");
    {
        WholeFile file("a.trk");
        file.Write(std::string(1'000'000, 'x'));
        EXPECT_EQ(FileContent("a.trk"), "old");
    }
    EXPECT_EQ(FileContent("a.trk"), "old");
    EXPECT_EQ(EntriesHere(), 1U);
}

TEST(WholeFile, keepsTheOrderOfSmallAndLargeWrites) {
    const TemporaryFolder folder;
    std::string expected;
    WholeFile file("a");
    for (const std::size_t size : {1U, 65'535U, 65'536U, 3U, 200'000U, 0U, 7U}) {
        const std::string piece(size, static_cast<char>('a' + expected.size() % 26));
        file.Write(piece);
        expected += piece;
    }
    ASSERT_TRUE(file.Commit());
    EXPECT_EQ(FileContent("a"), expected);
}

TEST(WholeFile, keepsThePermissionsOfTheFileItReplaces) {
    const TemporaryFolder folder;
    WriteFile("a.trk", "old");
    ASSERT_EQ(chmod("a.trk", 0640), 0);
    WholeFile file("a.trk");
    file.Write("new");
    ASSERT_TRUE(file.Commit());
    struct stat state {};
    ASSERT_EQ(stat("a.trk", &state), 0);
    EXPECT_EQ(state.st_mode & 0777U, 0640U);
}

TEST(WholeFile, writesThroughALinkToTheFileItNames) {
    const TemporaryFolder folder;
    WriteFile("real.trk", "old");
    std::filesystem::create_symlink("real.trk", "link.trk");
    WholeFile file("link.trk");
    file.Write("new");
    ASSERT_TRUE(file.Commit());
    EXPECT_TRUE(std::filesystem::is_symlink("link.trk"));
    EXPECT_EQ(FileContent("real.trk"), "new");
}

TEST(WholeFile, isNotOpenedWhereNoFileCanStand) {
    const TemporaryFolder folder;
    std::filesystem::create_directory("folder");
    EXPECT_FALSE(WholeFile("folder").IsOpen());
    EXPECT_FALSE(WholeFile("missing/a.trk").IsOpen());
    ASSERT_EQ(mkfifo("fifo", 0600), 0);
    EXPECT_FALSE(WholeFile("fifo").IsOpen());
    WholeFile closed("missing/a.trk");
    closed.Write("x");
    EXPECT_FALSE(closed.Commit());
}

} // namespace
