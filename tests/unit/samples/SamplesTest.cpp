#include "IndependentTrack.h"
#include "TemporaryFolder.h"
#include "samples/SampleOptionsReader.h"
#include "samples/SampleWorkspace.h"
#include "samples/TrackFileWriter.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <sys/wait.h>

namespace {

using Kind = MachinedPart::Kind;

class SamplesTest : public ::testing::Test {
  protected:
    independent::Track text(const MachinedPart& part, bool paths = true) {
        WriteTrackFile("t.trk", part, {TrackFormat::Text, paths});
        return independent::ReadText(FileContent("t.trk"));
    }
    independent::Track binary(const MachinedPart& part, bool paths = true) {
        WriteTrackFile("b.trk", part, {TrackFormat::Binary, paths});
        return independent::ReadBinary(FileContent("b.trk"));
    }

    static int run(const std::string& arguments) {
        const int status = std::system((std::string("\"") + SAMPLES_PROGRAM + "\" " + arguments).c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    TemporaryFolder folder;
};

TEST_F(SamplesTest, decimalsAreExactAndShort) {
    EXPECT_EQ(Decimal(0, 3), "0");
    EXPECT_EQ(Decimal(333, 3), "0.333");
    EXPECT_EQ(Decimal(10, 3), "0.01");
    EXPECT_EQ(Decimal(-1250, 3), "-1.25");
    EXPECT_EQ(Decimal(-5, 3), "-0.005");
    EXPECT_EQ(Decimal(40000, 3), "40");
}

TEST_F(SamplesTest, bothEncodingsHoldTheSameRawMap) {
    const MachinedPart part(Kind::Groove, 90, 60, 7);
    const independent::Track asText = text(part);
    const independent::Track asBinary = binary(part);
    ASSERT_EQ(asText.heights.size(), 90U * 60U);
    ASSERT_EQ(asBinary.cells.size(), asText.heights.size());
    for (std::size_t cell = 0; cell < asText.heights.size(); ++cell) {
        const auto& height = asText.heights[cell];
        const double raw = height ? std::trunc((*height - asText.zOffset) / asText.zResolution) : -32768.0;
        ASSERT_EQ(raw, asBinary.cells[cell]) << cell;
    }
    EXPECT_EQ(asText.xResolution, asBinary.xResolution);
    EXPECT_EQ(asText.zOffset, asBinary.zOffset);
    EXPECT_EQ(asText.segments, asBinary.segments);
}

TEST_F(SamplesTest, positionsFollowTheResolution) {
    const independent::Track track = text(MachinedPart(Kind::Seam, 90, 60, 1));
    EXPECT_EQ(track.xResolution, 1.111); // 100 mm / 90, in whole micrometres
    ASSERT_EQ(track.columnPositions.size(), 90U);
    ASSERT_EQ(track.rowPositions.size(), 60U);
    for (int column = 0; column < 90; ++column)
        EXPECT_NEAR(track.columnPositions[static_cast<std::size_t>(column)], -50 + column * 1.111, 1e-9);
    for (int row = 0; row < 60; ++row)
        EXPECT_NEAR(track.rowPositions[static_cast<std::size_t>(row)], 12.5 + row * 1.111, 1e-9);
}

TEST_F(SamplesTest, pathsAreInsideThePartInBothCoordinateSystems) {
    const independent::Track track = binary(MachinedPart(Kind::Groove, 300, 200, 3));
    ASSERT_EQ(track.segments.size(), 8U);
    for (const independent::Segment& segment : track.segments) {
        EXPECT_GT(segment.relativeX, 0.05);
        EXPECT_LT(segment.relativeX, 0.95);
        EXPECT_NEAR(segment.x, segment.relativeX * 300 * 0.333 - 50, 1e-9);
        EXPECT_NEAR(segment.y, segment.relativeY * 200 * 0.333 + 12.5, 1e-9);
    }
    EXPECT_TRUE(binary(MachinedPart(Kind::Groove, 300, 200, 3), false).segments.empty());
}

/// The mean raw height of the measured cells around a place, given as fractions of the picture's size.
double MeanAround(const independent::Track& track, double x, double y) {
    double sum = 0;
    int count = 0;
    const int column = static_cast<int>(x * track.width);
    const int row = static_cast<int>(y * track.height);
    for (int down = row - 1; down <= row + 1; ++down) {
        for (int across = column - 1; across <= column + 1; ++across) {
            const auto cell =
                track.cells[static_cast<std::size_t>(std::int64_t{down} * track.width + across)];
            sum += cell == independent::kNoMeasurement ? 0 : cell;
            count += cell == independent::kNoMeasurement ? 0 : 1;
        }
    }
    return count == 0 ? -32768.0 : sum / count;
}

TEST_F(SamplesTest, pathFollowsTheGrooveOrSeam) {
    for (const std::uint32_t seed : {1U, 2U, 3U}) {
        const independent::Track groove = binary(MachinedPart(Kind::Groove, 300, 200, seed));
        const independent::Track seam = binary(MachinedPart(Kind::Seam, 300, 200, seed));
        for (std::size_t i = 1; i + 1 < 5; ++i) {
            const independent::Segment& point = groove.segments[i];
            const double onGroove = MeanAround(groove, point.relativeX, point.relativeY);
            const double onSeam = MeanAround(seam, point.relativeX, point.relativeY);
            // 3 mm deep and 1.4 to 1.8 mm high, in units of 10 micrometres, from the same top
            EXPECT_NEAR(onSeam - onGroove, 460.0, 60.0) << "seed " << seed << ", point " << i;
        }
    }
}

TEST_F(SamplesTest, partHasHolesShadowsNoiseAndABoss) {
    const independent::Track track = binary(MachinedPart(Kind::Groove, 300, 200, 1));
    EXPECT_EQ(MeanAround(track, 0.74, 0.30), -32768.0); // the bore
    const double boss = MeanAround(track, 0.21, 0.70);
    const double plate = MeanAround(track, 0.40, 0.85);
    EXPECT_NEAR(boss - plate, 300.0, 60.0);
    // the boss hides its far side from the right camera: its radius is 7.3 mm in a width of 99.9 mm
    EXPECT_EQ(MeanAround(track, 0.21 - 0.073 - 0.006, 0.70), -32768.0);
    EXPECT_GT(MeanAround(track, 0.21 + 0.073 + 0.015, 0.70), plate - 60);
    const double table = MeanAround(track, 0.5, 0.99);
    EXPECT_NEAR(plate - table, 700.0, 100.0);
    EXPECT_NE(track.cells[60 * 300 + 150], track.cells[62 * 300 + 150]);
}

TEST_F(SamplesTest, sameSeedGivesTheSameBytesAndOtherSeedsDoNot) {
    WriteTrackFile("1", MachinedPart(Kind::Groove, 60, 40, 5), {TrackFormat::Text, true});
    WriteTrackFile("2", MachinedPart(Kind::Groove, 60, 40, 5), {TrackFormat::Text, true});
    WriteTrackFile("3", MachinedPart(Kind::Groove, 60, 40, 6), {TrackFormat::Text, true});
    EXPECT_EQ(FileContent("1"), FileContent("2"));
    EXPECT_NE(FileContent("1"), FileContent("3"));
}

TEST_F(SamplesTest, committedTracksEqualTheGeneratorsOutput) {
    const std::string tracks = std::string(CORVANE_SAMPLES) + "/tracks/";
    const std::pair<const char*, const char*> made[] = {
        {"housing.trk", ""},
        {"housing-binary.trk", "--format binary"},
        {"cover.trk", "--part seam --seed 2 --no-paths"},
        {"cover-binary.trk", "--part seam --seed 3 --format binary --width 480 --height 320"}};
    std::uintmax_t size = 0;
    for (const auto& [name, options] : made) {
        ASSERT_EQ(run(std::string("track again.trk ") + options), 0);
        EXPECT_TRUE(FileContent("again.trk") == FileContent(tracks + name)) << name;
        size += std::filesystem::file_size(tracks + name);
    }
    EXPECT_LT(size, 1'500'000U);
}

TEST_F(SamplesTest, smallestAndNarrowPartsAreComplete) {
    for (const auto& [columns, rows] : {std::pair{2, 2}, {2, 500}, {500, 2}}) {
        const independent::Track track = binary(MachinedPart(Kind::Seam, columns, rows, 1));
        EXPECT_EQ(track.width, columns);
        EXPECT_EQ(track.height, rows);
    }
}

TEST_F(SamplesTest, workspaceHasTheSensorsLayout) {
    ASSERT_EQ(run("workspace space"), 0);
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator("space"))
        names.push_back(entry.path().string() + (entry.is_directory() ? "/" : ""));
    std::sort(names.begin(), names.end());
    EXPECT_THAT(names, ::testing::ElementsAre(
                           "space/vdk/", "space/vdk/ContourPath/", "space/vdk/ContourPath/cover.trk",
                           "space/vdk/ContourPath/housing-blank.trk", "space/vdk/ContourPath/housing.trk",
                           "space/vdk/ContourPath/notes.txt", "space/vdk/empty/", "space/vdk/settings.json"));
    EXPECT_EQ(independent::ReadText(FileContent("space/vdk/ContourPath/housing.trk")).segments.size(), 8U);
    EXPECT_EQ(independent::ReadBinary(FileContent("space/vdk/ContourPath/cover.trk")).width, 400);
}

TEST_F(SamplesTest, programReportsUnknownArguments) {
    for (const char* const arguments :
         {"", "paint x", "track", "track x --width 1", "track x --width 100001", "track x --width 3x",
          "track x --seed -1", "track x --format csv", "track x --part lid", "track x --height",
          "track x --what 1", "workspace x --width 300"}) {
        EXPECT_EQ(run(std::string(arguments) + " 2>message"), 2) << arguments;
        EXPECT_THAT(FileContent("message"), ::testing::HasSubstr("see --help")) << arguments;
        EXPECT_FALSE(std::filesystem::exists("x"));
    }
}

TEST_F(SamplesTest, programReportsAnUnwritableTarget) {
    EXPECT_EQ(run("track no/such/x.trk 2>message"), 1);
    EXPECT_EQ(FileContent("message"), "corvane-samples: cannot write no/such/x.trk\n");
    WriteFile("file", "");
    EXPECT_EQ(run("workspace file 2>message"), 1);
}

TEST_F(SamplesTest, fullDiskIsReported) {
    EXPECT_THROW(WriteTrackFile("/dev/full", MachinedPart(Kind::Groove, 300, 200, 1), {}),
                 std::runtime_error);
}

TEST_F(SamplesTest, helpNamesEveryOption) {
    ASSERT_EQ(run("--help >help"), 0);
    for (const char* const option :
         {"--width", "--height", "--format", "--part", "--seed", "--no-paths", "workspace", "track"})
        EXPECT_THAT(FileContent("help"), ::testing::HasSubstr(option));
}

} // namespace
