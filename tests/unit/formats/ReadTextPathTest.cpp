#include "document/formats/ConvertCSV.h"

#include "LogCapture.h"
#include "TemporaryFolder.h"
#include "TextTrack.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ReadTextPath : public testing::Test {
  protected:
    int Read(const std::string& content) {
        WriteFile("a.trk", content);
        return ConvertCSV().ReadPath("a.trk", paths);
    }

    /// A path section with a point for each path number.
    int ReadNumbered(const std::vector<std::string>& numbers) {
        std::string track = "Segment\nhead\n";
        for (const std::string& number : numbers)
            track += number + ",0,0,0,0.5,0.5,1,100,50,100\n";
        return Read(track + "End\n");
    }

    [[nodiscard]] std::vector<std::size_t> PointCounts() const {
        std::vector<std::size_t> counts;
        for (const TrackPath& path : paths)
            counts.push_back(path.points.size());
        return counts;
    }

    TemporaryFolder folder;
    LogCapture log;
    std::vector<TrackPath> paths{TrackPath{}, TrackPath{}};
};

TEST_F(ReadTextPath, readsPointsAndParametersFromTheirColumns) {
    EXPECT_EQ(Read(SmallTrack()), 0);
    ASSERT_EQ(paths.size(), 1U);
    EXPECT_THAT(paths[0].points, ElementsAre(QPointF(0.25, 0.4), QPointF(0.65, 0.5)));
    EXPECT_THAT(paths[0].methods, ElementsAre(1, 2));
    EXPECT_THAT(paths[0].lengths, ElementsAre(100, 101));
    EXPECT_THAT(paths[0].widths, ElementsAre(50, 51));
    EXPECT_THAT(paths[0].spaces, ElementsAre(100, 102));
    EXPECT_THAT(paths[0].rulerMarks, IsEmpty());
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(ReadTextPath, startsAPathAtEachNextNumber) {
    EXPECT_EQ(ReadNumbered({"0", "0", "1", "1"}), 0);
    EXPECT_THAT(PointCounts(), ElementsAre(2U, 2U));
}

TEST_F(ReadTextPath, addsPointsOfAnyOtherNumberToTheLastPath) {
    EXPECT_EQ(ReadNumbered({"0", "2"}), 0);
    EXPECT_THAT(PointCounts(), ElementsAre(2U));
    EXPECT_EQ(ReadNumbered({"0", "1", "0", "-1", "x", "2", "1"}), 0);
    EXPECT_THAT(PointCounts(), ElementsAre(1U, 4U, 2U));
}

TEST_F(ReadTextPath, refusesAFirstPointThatStartsNoPath) {
    EXPECT_EQ(ReadNumbered({"1", "0"}), 1);
    EXPECT_THAT(paths, IsEmpty());
    EXPECT_THAT(log.Lines(),
                ElementsAre("ERROR: [ReadPathFromCsv] (EXCEPTION) A point of path 1 comes before "
                            "the first path"));
}

TEST_F(ReadTextPath, ignoresSegmentAndPosition) {
    EXPECT_EQ(Read("Segment\nhead\n0,x,y,,0.5,0.25,1,2,3,4\n"), 0);
    EXPECT_THAT(paths.at(0).points, ElementsAre(QPointF(0.5, 0.25)));
}

TEST_F(ReadTextPath, readsNonNumbersAsZero) {
    EXPECT_EQ(Read("Segment\nhead\n,,,,a,,b,,c,\n"), 0);
    EXPECT_THAT(paths.at(0).points, ElementsAre(QPointF(0, 0)));
    EXPECT_THAT(paths[0].methods, ElementsAre(0));
    EXPECT_THAT(paths[0].spaces, ElementsAre(0));
}

TEST_F(ReadTextPath, acceptsASectionWhoseHeaderContainsTheKeyword) {
    EXPECT_EQ(Read(Replaced(SmallTrack(), "Segment\n", "MySegments of today,1\n")), 0);
    EXPECT_EQ(paths.size(), 1U);
}

TEST_F(ReadTextPath, ignoresASectionWhoseHeaderFieldIsShorter) {
    EXPECT_EQ(Read(Replaced(SmallTrack(), "Segment\n", "Segmen\n")), 1);
    EXPECT_THAT(paths, IsEmpty());
}

TEST_F(ReadTextPath, clearsThePathsAndFailsWithoutASection) {
    EXPECT_EQ(Read("Info\nhead\n1,1,1,0,0,0,3,2\nx,Segment\n"), 1);
    EXPECT_THAT(paths, IsEmpty());
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(ReadTextPath, readsASectionWithoutLinesAsNoPaths) {
    EXPECT_EQ(Read("Segment\nhead\nEnd\n"), 0);
    EXPECT_THAT(paths, IsEmpty());
    EXPECT_EQ(Read("Segment"), 0);
    EXPECT_THAT(paths, IsEmpty());
}

TEST_F(ReadTextPath, skipsTheHeaderLineWithAnyContent) {
    for (const char* const header : {"", "End", "0,0,0,0,9,9,9,9,9,9", "\\x"}) {
        EXPECT_EQ(Read("Segment\n" + std::string(header) + "\n0,0,0,0,0.5,0.25,1,2,3,4\nEnd\n"), 0) << header;
        EXPECT_THAT(PointCounts(), ElementsAre(1U));
    }
}

TEST_F(ReadTextPath, stopsAtTheEndLine) {
    EXPECT_EQ(Read(SmallTrack() + "Segment\nhead\n1,0,0,0,0.5,0.25,1,2,3,4\n\\x\n"), 0);
    EXPECT_THAT(PointCounts(), ElementsAre(2U));
}

TEST_F(ReadTextPath, skipsEmptyLinesAndIgnoresCarriageReturns) {
    EXPECT_EQ(Read("Segment\r\nhead\r\n\r\n\n0,0,0,0,0.5,0.25,1,2,3,4\r\nEnd\r\n"), 0);
    EXPECT_THAT(paths.at(0).spaces, ElementsAre(4));
}

TEST_F(ReadTextPath, refusesALineOfTooFewFields) {
    EXPECT_EQ(
        Read(Replaced(SmallTrack(), "0,1,20.5,3.2,0.65,0.5,2,101,51,102", "0,1,20.5,3.2,0.65,0.5,2,101,51")),
        1);
    EXPECT_THAT(PointCounts(), ElementsAre(1U));
    EXPECT_EQ(paths[0].spaces.size(), 1U);
    EXPECT_THAT(log.Lines(),
                ElementsAre("ERROR: [ReadPathFromCsv] (EXCEPTION) Invalid item count=9 for a point "
                            "of a path"));
}

TEST_F(ReadTextPath, ignoresFieldsBeyondTheTenth) {
    EXPECT_EQ(Read("Segment\nhead\n0,0,0,0,0.5,0.25,1,2,3,4,5,6\n"), 0);
    EXPECT_THAT(paths.at(0).spaces, ElementsAre(4));
}

TEST_F(ReadTextPath, missingFileFailsSilentlyAndKeepsThePaths) {
    EXPECT_EQ(ConvertCSV().ReadPath("none.trk", paths), 1);
    EXPECT_EQ(paths.size(), 2U);
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(ReadTextPath, logsTheTokenizersErrors) {
    EXPECT_EQ(Read(Replaced(SmallTrack(), "0,1,20.5", "0,1\\x,20.5")), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: [ReadPathFromCsv] (EXCEPTION) unknown escape sequence"));
    EXPECT_THAT(PointCounts(), ElementsAre(1U));
}

TEST_F(ReadTextPath, namesTheLineOfAnError) {
    EXPECT_EQ(Read("Segment\nhead\n0,0,0,0,0.5,0.5,1,100,50,100\n0,1,0\nEnd\n"), 1);
    EXPECT_THAT(
        log.LinesWithPlaces(),
        ElementsAre("INFO: Line 4: \"0,1,0\"",
                    "ERROR: [ReadPathFromCsv] (EXCEPTION) Invalid item count=3 for a point of a path"));
}

} // namespace
