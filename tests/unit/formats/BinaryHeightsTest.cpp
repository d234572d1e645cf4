#include "document/formats/ConvertBIN.h"

#include "DocumentSamples.h"
#include "LogCapture.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

namespace {

using independent::BinaryFile;
using independent::BinaryHead;
using independent::BinaryRulers;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// A temporary folder and the helpers of every test.
class BinaryHeights : public testing::Test {
  protected:
    int ReadHeights(const std::string& content) {
        WriteFile("a.trk", content);
        return converter.ReadRawHeights("a.trk", info, heights);
    }

    int ReadAnchor(const std::string& content) {
        WriteFile("a.trk", content);
        return converter.ReadAnchor("a.trk", info);
    }

    TemporaryFolder folder;
    LogCapture log;
    ConvertBIN converter;
    TrackInfo info = InfoOf(SampleTrack());
    HeightMap heights{7};
};

TEST_F(BinaryHeights, equalTheCellsOfTheFile) {
    EXPECT_EQ(ReadHeights(BinaryFile(SampleTrack())), 0);
    EXPECT_EQ(heights, SampleTrack().cells);
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(BinaryHeights, areRefusedForOtherDimensions) {
    ++info.width;
    EXPECT_EQ(ReadHeights(BinaryFile(SampleTrack())), 1);
    EXPECT_THAT(heights, ElementsAre(7));
    EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr("Height map of 5 x 3 cells where 6 x 3 were expected")));
}

TEST_F(BinaryHeights, areRefusedWhenTruncated) {
    std::string content = BinaryHead(SampleTrack());
    content.pop_back();
    EXPECT_EQ(ReadHeights(content), 1);
    EXPECT_THAT(heights, ElementsAre(7));
    EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr("Height map of 5 x 3 cells is not in the file")));
}

TEST_F(BinaryHeights, areRefusedForAFileThatIsNoTrack) {
    EXPECT_EQ(ReadHeights("no track"), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Could not find file (a.trk)"));
}

TEST_F(BinaryHeights, areFollowedByTheAnchor) {
    info.anchorX = info.anchorY = info.anchorAngle = 7;
    EXPECT_EQ(ReadAnchor(BinaryFile(SampleTrack())), 0);
    EXPECT_EQ(info.anchorX, SampleTrack().anchor[0]);
    EXPECT_EQ(info.anchorY, SampleTrack().anchor[1]);
    EXPECT_EQ(info.anchorAngle, SampleTrack().anchor[2]);
}

TEST_F(BinaryHeights, missingAnchorIsZero) {
    info.anchorX = info.anchorY = info.anchorAngle = 7;
    EXPECT_EQ(ReadAnchor(BinaryHead(SampleTrack()) + BinaryRulers(SampleTrack())), 0);
    EXPECT_EQ(info.anchorX, 0);
    EXPECT_EQ(info.anchorY, 0);
    EXPECT_EQ(info.anchorAngle, 0);
}

TEST_F(BinaryHeights, truncatedAnchorIsRefused) {
    std::string content = BinaryHead(SampleTrack()) + independent::BinaryAnchor(SampleTrack());
    content.pop_back();
    EXPECT_EQ(ReadAnchor(content), 1);
    EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr("File cut short at byte")));
}

} // namespace
