#include "document/PathFiles.h"

#include "LogCapture.h"
#include "SmallTrack.h"
#include "TemporaryFolder.h"
#include "document/RulerMarksBuilder.h"
#include "document/RulerMarksCache.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::StartsWith;

/// Saves text tracks whose heights a binary track may not hold.
class SavingHeights : public testing::Test {
  protected:
    /// Saves a text track with these heights, five a row, in place and as a copy.
    void ExpectRefused(const std::vector<double>& heights, double zResolution, const std::string& reason) {
        WriteFile("a.trk", TextTrack(heights, zResolution));
        WriteFile("b.trk", "old");
        for (const char* const target : {"a.trk", "b.trk"}) {
            EXPECT_EQ(Save(target), SaveResult::OriginalUnreadable);
            EXPECT_THAT(log.Lines(), ElementsAre("INFO: Creating ConvertCSV.", "ERROR: " + reason));
        }
        EXPECT_EQ(FileContent("a.trk"), TextTrack(heights, zResolution));
        EXPECT_EQ(FileContent("b.trk"), "old");
    }

    static SaveResult Save(const std::string& target) {
        return SaveWithPaths("a.trk", target, {}, WorldTransform{}, true);
    }

    static std::string TextTrack(const std::vector<double>& heights, double zResolution) {
        independent::Track track = ::SmallTrack(PathAcross(0, 2, 0.5, 100), 5, 2);
        track.zResolution = zResolution;
        track.heights.assign(heights.begin(), heights.end());
        return independent::TextFile(track);
    }

    TemporaryFolder folder;
    LogCapture log;
};

TEST_F(SavingHeights, isRefusedWithoutAResolution) {
    ExpectRefused({5, 6, 7, 8, 9, 5, 6, 7, 8, 9}, 0.0,
                  "Cannot store row=0 column=0 height=5: ZResolution=0 and ZOffset=0 give it no raw value");
}

TEST_F(SavingHeights, isRefusedWhenAllWouldBecomeEqual) {
    ExpectRefused({5, 6, 7, 8, 9, 5, 6, 7, 8, 9}, 10.0,
                  "Cannot store row=0 column=1 height=6: with ZResolution=10 all heights become the raw "
                  "value 0");
}

TEST_F(SavingHeights, isRefusedBeyondSixteenBits) {
    ExpectRefused({5, 10, 20, 30, 32, 32.5, 40, 50, 60, 70}, 0.001,
                  "Cannot store row=1 column=1 height=40: its raw value 40000 is beyond 16 bits");
}

TEST_F(SavingHeights, succeedsWhenTheResolutionFits) {
    WriteFile("a.trk", TextTrack({5, 10, 20, 30, 32, 32.5, 40, 50, 60, 70}, 0.5));
    EXPECT_EQ(Save("a.trk"), SaveResult::Saved);
    EXPECT_THAT(log.Lines(), Not(Contains(StartsWith("ERROR"))));
    EXPECT_THAT(independent::ReadBinary(FileContent("a.trk")).cells,
                ElementsAre(10, 20, 40, 60, 64, 65, 80, 100, 120, 140));
}

/// Saves paths whose ruler has more ticks than marks are built for.
class SavingRulers : public testing::Test {
  protected:
    /// A path across a map of 1000 x 1000 with a tick at every pixel.
    static TrackPath DensePath() { return {{{0.0, 0.5}, {1.0, 0.5}}, {1, 1}, {10, 10}, {2, 2}, {0, 0}, {}}; }

    SaveResult Save(const std::vector<TrackPath>& paths) {
        return SaveWithPaths("a.trk", "b.trk", paths, WorldTransform{}, true, builder.TickCount(paths));
    }

    TemporaryFolder folder;
    LogCapture log;
    RulerMarksBuilder builder{QSize(1000, 1000)};
};

TEST_F(SavingRulers, isRefusedWhenMarksWereLeftOut) {
    std::vector<TrackPath> paths(2'001, DensePath());
    RulerMarksCache().Update(paths, QSize(1000, 1000), [](std::size_t, const RulerMarks&) {});
    ASSERT_EQ(RulerTicksHeld(paths), 2'000'000U);
    for (const std::string& original : {independent::BinaryFile(::SmallTrack(PathAcross(0, 2, 0.5, 1))),
                                        independent::TextFile(::SmallTrack(PathAcross(0, 2, 0.5, 1)))}) {
        WriteFile("a.trk", original);
        WriteFile("b.trk", "old");
        EXPECT_EQ(Save(paths), SaveResult::OriginalUnreadable);
        EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Cannot store the ruler: its marks hold 2000000 of "
                                             "2001000 ticks"));
        EXPECT_EQ(FileContent("b.trk"), "old");
    }
}

TEST_F(SavingRulers, isRefusedWhenASegmentHasTooMany) {
    WriteFile("a.trk", independent::BinaryFile(::SmallTrack()));
    TrackPath path = DensePath();
    path.points.back().setX(100.001);
    path.rulerMarks = builder.MarksOfPath(path);
    EXPECT_EQ(Save({path}), SaveResult::OriginalUnreadable);
    EXPECT_THAT(log.Lines(),
                ElementsAre("ERROR: Cannot store the ruler: its marks hold 100000 of 100001 ticks"));
}

TEST_F(SavingRulers, succeedsWithAllOfThem) {
    WriteFile("a.trk", independent::BinaryFile(::SmallTrack()));
    TrackPath path = DensePath();
    path.rulerMarks = builder.MarksOfPath(path);
    EXPECT_EQ(Save({path, path}), SaveResult::Saved);
    EXPECT_EQ(independent::ReadBinary(FileContent("b.trk")).rulers.size(), 2'000U);
}

} // namespace
