#include "ToolRun.h"

#include "SmallTrack.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <QJsonArray>

namespace {

using independent::Track;
using testing::ElementsAre;

/// 40 x 20 cells of 0.5 x 0.25 from 10, 20 on, with a path of three points.
Track Original() {
    return SmallTrack(PathAcross(0, 3, 0.25, 50));
}

class DiffCommand : public testing::Test {
  protected:
    DiffCommand() { WriteFile("a.trk", BinaryFile(Original())); }

    /// The lines of a comparison of the sample with another track, which must differ.
    static std::vector<std::string> Differences(const Track& other) {
        WriteFile("b.trk", BinaryFile(other));
        const ToolResult result = RunTrackTool({"diff", "a.trk", "b.trk"});
        EXPECT_EQ(result.code, 1) << result.errors;
        return result.Lines();
    }

    TemporaryFolder folder;
};

TEST_F(DiffCommand, findsNoDifferenceInEqualTracksOfAnyEncoding) {
    Track rounded = Original();
    rounded.rulers = {{0, 0, 0, 1, 2, 3, 4, 1, 5}}; // normally follows from the paths
    rounded.heights[3] = *rounded.heights[3] + 0.2; // a binary track has steps of 0.25
    WriteFile("text.trk", TextFile(rounded));
    const ToolResult result = RunTrackTool({"diff", "a.trk", "text.trk"});
    EXPECT_EQ(result.output, "no differences\n");
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(RunTrackTool({"diff", "a.trk", "a.trk"}).code, 0);
    WriteFile("other.trk", TextFile(Original()));
    EXPECT_THAT(RunTrackTool({"diff", "other.trk", "text.trk"}).Lines(),
                ElementsAre("heights", "  1 cells differ, by 0.2 at most (row 0, column 3)",
                            "  rows 0 to 0, columns 3 to 3"));
}

TEST_F(DiffCommand, reportsDifferentInformation) {
    Track other = Original();
    other.xOffset = 11;
    other.anchor[2] = 45;
    for (independent::Segment& point : other.segments)
        point.relativeX -= 1 / 20.0; // the same world coordinates
    EXPECT_THAT(Differences(other), testing::Contains("information"));
    EXPECT_THAT(Differences(other), testing::Contains("  xOffset: 10 | 11"));
    EXPECT_THAT(Differences(other), testing::Contains("  anchorAngle: 0 | 45"));
}

TEST_F(DiffCommand, reportsDifferentHeights) {
    Track other = Original();
    other.cells[2 * 40 + 5] += 4;
    other.cells[3 * 40 + 9] -= 6;
    other.cells[3 * 40 + 10] += 6; // as large as the one before
    other.cells[7 * 40 + 2] = independent::kNoMeasurement;
    EXPECT_THAT(Differences(other),
                ElementsAre("heights", "  3 cells differ, by 1.5 at most (row 3, column 9)",
                            "  1 cells are measured in the first track alone",
                            "  rows 2 to 7, columns 2 to 10"));
    const ToolResult reversed = RunTrackTool({"diff", "b.trk", "a.trk"});
    EXPECT_EQ(reversed.Lines()[2], "  1 cells are measured in the second track alone");
}

TEST_F(DiffCommand, skipsTheHeightsOfMapsWithDifferentDimensions) {
    const Track other = SmallTrack(PathAcross(0, 3, 0.25, 50), 20, 40);
    const auto lines = Differences(other);
    EXPECT_THAT(lines, testing::Contains("  width: 40 | 20"));
    EXPECT_THAT(lines, testing::Contains("  not compared, since the maps have different dimensions"));
}

TEST_F(DiffCommand, reportsDifferentPointsAndPaths) {
    Track other = SmallTrack(PathAcross(0, 3, 0.25, 50));
    other.segments[1].relativeX = 0.55;
    other.segments[1].width = 7;
    other.segments.pop_back();
    for (const independent::Segment& point : SmallTrack(PathAcross(1, 1, 0.5, 10)).segments)
        other.segments.push_back(point);
    EXPECT_THAT(Differences(other), ElementsAre("paths", "  1 | 2 paths",
                                                "  path 1, point 2: at 20, 21.25 | 21, 21.25; Width 61 | 7",
                                                "  path 1, point 3: only in the first track, at 25, 21.25",
                                                "  path 2, point 1: only in the second track, at 20, 22.5"));
}

TEST_F(DiffCommand, toleratesSmallDifferences) {
    Track other = Original();
    other.cells[5] += 2; // 0.5
    other.segments[1].relativeY += 0.5 / 5;
    WriteFile("b.trk", BinaryFile(other));
    EXPECT_EQ(RunTrackTool({"diff", "--tolerance", "0.51", "a.trk", "b.trk"}).code, 0);
    EXPECT_EQ(RunTrackTool({"diff", "--tolerance", "0.49", "a.trk", "b.trk"}).code, 1);
    EXPECT_EQ(RunTrackTool({"diff", "--tolerance", "-1", "a.trk", "b.trk"}).code, 2);
}

TEST_F(DiffCommand, printsJson) {
    Track other = Original();
    other.yResolution = 0.5;
    other.cells[45] += 4;
    other.segments.pop_back();
    WriteFile("b.trk", BinaryFile(other));
    const auto objects = RunTrackTool({"diff", "--json", "a.trk", "b.trk"}).Objects();
    ASSERT_EQ(objects.size(), 1U);
    const QJsonObject& difference = objects.front();
    EXPECT_EQ(difference[QLatin1String("equal")], false);
    EXPECT_EQ(difference[QLatin1String("information")],
              (QJsonArray{QJsonObject{{QStringLiteral("name"), QStringLiteral("yResolution")},
                                      {QStringLiteral("first"), 0.25},
                                      {QStringLiteral("second"), 0.5}}}));
    const QJsonObject heights = difference[QLatin1String("heights")].toObject();
    EXPECT_EQ(heights[QLatin1String("differing")], 1);
    EXPECT_EQ(heights[QLatin1String("largest")], 1);
    EXPECT_EQ(heights[QLatin1String("row")], 1);
    EXPECT_EQ(heights[QLatin1String("column")], 5);
    const QJsonArray points = difference[QLatin1String("points")].toArray();
    ASSERT_EQ(points.size(), 3); // with the other resolution every position differs
    EXPECT_TRUE(points[2].toObject()[QLatin1String("second")].isNull());
    EXPECT_EQ(points[2].toObject()[QLatin1String("first")].toObject()[QLatin1String("length")], 52);
    EXPECT_EQ(RunTrackTool({"diff", "--json", "a.trk", "a.trk"}).Objects()[0][QLatin1String("equal")], true);
}

} // namespace
