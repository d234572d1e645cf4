#include "ToolRun.h"

#include "SmallTrack.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <QImage>

#include <filesystem>

namespace {

using independent::Segment;
using independent::Track;
using testing::ElementsAre;
using testing::HasSubstr;

/// 40 x 20 cells of 0.5 x 0.25 from 10, 20 on; heights rise by 1 a column and 0.25 a row. A path goes 4 to
/// the right along row 5, then 2 down along column 12; another one leaves the map.
Track ProfiledTrack() {
    const auto at = [](int path, int point, double column, double row) {
        return Segment{path, point, 0, 0, column / 40, row / 20, 1, 1, 1, 1};
    };
    Track track = SmallTrack({at(0, 0, 4.5, 5.5), at(0, 1, 12.5, 5.5), at(0, 2, 12.5, 13.5), at(1, 0, 38, 1),
                              at(1, 1, 42, 1), at(2, 0, 40, 20)});
    track.cells[5 * 40 + 6] = independent::kNoMeasurement;
    track.heights[5 * 40 + 6].reset();
    return track;
}

/// The uppermost pixel of the curve, which is blue, in a column of a plot.
struct Crossing {
    int column;
    int row;
};

std::vector<Crossing> CurveOf(const QImage& plot) {
    const auto isBlue = [](const QColor& colour) { return colour.blue() - colour.red() > 100; };
    std::vector<Crossing> curve;
    for (int x = 0; x < plot.width(); ++x)
        for (int y = 0; y < plot.height(); ++y)
            if (isBlue(plot.pixelColor(x, y))) {
                curve.push_back({x, y});
                break;
            }
    return curve;
}

class ProfileCommand : public testing::Test {
  protected:
    ProfileCommand() {
        WriteFile("a.trk", BinaryFile(ProfiledTrack()));
        WriteFile("text.trk", TextFile(ProfiledTrack()));
    }

    TemporaryFolder folder;
};

TEST_F(ProfileCommand, samplesTheCellsAlongThePath) {
    const std::vector<std::string> expected = {
        "Distance,X,Y,Segment,Column,Row,Height",
        "0,12.25,21.375,0,4,5,5.25",
        "1,13.25,21.375,0,6,5,",
        "2,14.25,21.375,0,8,5,9.25",
        "3,15.25,21.375,0,10,5,11.25",
        "4,16.25,21.375,1,12,5,13.25",
        "5,16.25,22.375,1,12,9,14.25",
        "6,16.25,23.375,1,12,13,15.25",
    };
    EXPECT_EQ(RunTrackTool({"profile", "a.trk", "--step", "1"}).Lines(), expected);
    EXPECT_EQ(RunTrackTool({"profile", "text.trk", "--step", "1"}).Lines(), expected);
}

TEST_F(ProfileCommand, endsAtTheLastPointForAnyStep) {
    EXPECT_THAT(RunTrackTool({"profile", "a.trk", "--step", "4"}).Lines(),
                ElementsAre("Distance,X,Y,Segment,Column,Row,Height", "0,12.25,21.375,0,4,5,5.25",
                            "4,16.25,21.375,1,12,5,13.25", "6,16.25,23.375,1,12,13,15.25"));
}

TEST_F(ProfileCommand, stepsByTheFinerResolutionByDefault) {
    EXPECT_EQ(RunTrackTool({"profile", "a.trk"}).Lines().size(), 1 + 6 / 0.25 + 1);
}

TEST_F(ProfileCommand, hasNoHeightOutsideTheMap) {
    EXPECT_THAT(RunTrackTool({"profile", "a.trk", "--path", "2", "--step", "1"}).Lines(),
                ElementsAre("Distance,X,Y,Segment,Column,Row,Height", "0,29,20.25,0,38,1,38.25",
                            "1,30,20.25,0,39,1,39.25", // the border belongs to the map
                            "2,31,20.25,0,,1,"));
}

TEST_F(ProfileCommand, givesOneHeightForASinglePoint) {
    EXPECT_THAT(RunTrackTool({"profile", "a.trk", "--path", "3"}).Lines(),
                ElementsAre("Distance,X,Y,Segment,Column,Row,Height", "0,30,25,0,39,19,43.75"));
}

TEST_F(ProfileCommand, givesUnroundedHeightsOfATextTrack) {
    Track track = ProfiledTrack();
    track.heights[5 * 40 + 4] = 5.37; // not a multiple of the Z resolution
    WriteFile("text.trk", TextFile(track));
    EXPECT_EQ(RunTrackTool({"profile", "text.trk", "--step", "4"}).Lines()[1], "0,12.25,21.375,0,4,5,5.37");
}

TEST_F(ProfileCommand, plotsTheCurve) {
    const ToolResult result = RunTrackTool({"profile", "a.trk", "--plot", "a.png", "--size", "640x320"});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.output + result.errors, "");
    const QImage plot(QStringLiteral("a.png"));
    ASSERT_EQ(plot.size(), QSize(640, 320));
    const std::vector<Crossing> curve = CurveOf(plot);
    ASSERT_GT(curve.size(), 400U);
    const int left = curve.front().column;
    const double width = curve.back().column - left;
    // Heights never fall along this path. Samples 0.75 and 1 of 6 are not measured: nothing is drawn between
    // their neighbours.
    for (std::size_t i = 1; i < curve.size(); ++i) {
        EXPECT_LE(curve[i].row, curve[i - 1].row + 1) << curve[i].column;
        const double distance = (curve[i].column - left) / width * 6;
        EXPECT_TRUE(distance < 0.5 + 0.03 || distance > 1.25 - 0.03) << distance;
        if (curve[i].column != curve[i - 1].column + 1) {
            EXPECT_NEAR(distance, 1.25, 0.03);
        }
    }
    RunTrackTool({"profile", "a.trk", "--plot", "b.png", "-o", "b.csv"});
    EXPECT_EQ(FileContent("b.csv"), RunTrackTool({"profile", "a.trk"}).output);
    EXPECT_TRUE(std::filesystem::exists("b.png"));
}

TEST_F(ProfileCommand, removesTemporaryFilesOfThePlot) {
    RunTrackTool({"profile", "a.trk", "--plot", "a.png"});
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator("."))
        names.push_back(entry.path().filename().string());
    EXPECT_THAT(names, testing::UnorderedElementsAre("a.trk", "text.trk", "a.png"));
}

TEST_F(ProfileCommand, refusesPathsWithoutAProfile) {
    const ToolResult path = RunTrackTool({"profile", "a.trk", "--path", "4"});
    EXPECT_EQ(path.code, 2);
    EXPECT_THAT(path.errors, HasSubstr("has 3 paths, and none with number 4"));
    EXPECT_EQ(RunTrackTool({"profile", "a.trk", "--path", "0"}).code, 2);
    EXPECT_EQ(RunTrackTool({"profile", "a.trk", "--step", "0"}).code, 2);
    const ToolResult step = RunTrackTool({"profile", "a.trk", "--step", "1e-9"});
    EXPECT_EQ(step.code, 2);
    EXPECT_THAT(step.errors, HasSubstr("more than 10 million steps"));
    Track track = ProfiledTrack();
    track.xResolution = 0;
    WriteFile("flat.trk", BinaryFile(track));
    EXPECT_THAT(RunTrackTool({"profile", "flat.trk"}).errors, HasSubstr("choose one with --step"));
    track = ProfiledTrack();
    track.segments[1].relativeX = 1e308;
    track.segments[2].relativeX = -1e308;
    WriteFile("far.trk", BinaryFile(track));
    const ToolResult far = RunTrackTool({"profile", "far.trk"});
    EXPECT_EQ(far.code, 3);
    EXPECT_THAT(far.errors, HasSubstr("points that are not finite"));
}

} // namespace
