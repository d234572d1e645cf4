#include "workflow/KeptCopies.h"

#include "FixedTime.h"
#include "FolderTree.h"
#include "LogCapture.h"
#include "SmallTrack.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

namespace {

using Tree = std::map<std::string, std::string>;

class TextOriginalTest : public testing::Test {
  protected:
    TemporaryFolder folder;
    LogCapture log;
    TimeZone zone{"UTC0"};
    std::string kept = folder.Path("kept größe");
    KeptCopies copies{kept, {}, [] { return std::time_t{1795356192}; }}; // 2026-11-22 14:03:12
};

TEST_F(TextOriginalTest, isKeptUnchanged) {
    const std::string text = independent::TextFile(SmallTrack(PathAcross(0, 3, 0.5, 100)));
    WriteFile("cover.trk", text);
    EXPECT_TRUE(KeepTextOriginal(copies, folder.Path("cover.trk")));
    EXPECT_EQ(FolderTree(kept), (Tree{{"2026-11-22 14.03.12 cover.trk (text original).trk", text}}));
    EXPECT_EQ(FileContent("cover.trk"), text);
}

TEST_F(TextOriginalTest, isNotKeptOfABinaryTrack) {
    WriteFile("cover.trk", independent::BinaryFile(SmallTrack()));
    EXPECT_TRUE(KeepTextOriginal(copies, "cover.trk"));
    EXPECT_TRUE(KeepTextOriginal(copies, "missing.trk"));
    EXPECT_TRUE(KeepTextOriginal(copies, folder.Path("")));
    EXPECT_TRUE(FolderTree(".") == (Tree{{"cover.trk", independent::BinaryFile(SmallTrack())}}));
    EXPECT_TRUE(log.Lines().empty());
}

TEST_F(TextOriginalTest, isReportedWhenItCannotBeKept) {
    WriteFile("cover.trk", "Info\n");
    WriteFile("kept größe", "");
    EXPECT_FALSE(KeepTextOriginal(copies, "cover.trk"));
    EXPECT_EQ(log.Lines().size(), 1U);
}

} // namespace
