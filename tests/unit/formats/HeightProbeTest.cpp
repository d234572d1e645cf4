#include "document/formats/HeightProbe.h"

#include "IndependentTrack.h"
#include "SmallTrack.h"
#include "TemporaryFolder.h"
#include "document/formats/Converter.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using Kind = CellHeight::Kind;

/// A map of 7 x 5 cells with its lowest and highest raw heights, and cells without a measurement at corners.
independent::Track OddMap() {
    independent::Track track = SmallTrack({}, 7, 5);
    track.zOffset = -3;
    const auto set = [&](std::size_t cell, std::optional<double> height, std::int16_t raw) {
        track.heights[cell] = height;
        track.cells[cell] = raw;
    };
    for (std::size_t cell = 0; cell < track.cells.size(); ++cell)
        track.heights[cell] = track.cells[cell] * 0.25 - 3;
    set(0, {}, independent::kNoMeasurement);
    set(34, {}, independent::kNoMeasurement);
    set(6, 32767 * 0.25 - 3, 32767);
    set(28, -32767 * 0.25 - 3, -32767);
    return track;
}

class HeightProbeTest : public ::testing::Test {
  protected:
    /// Opens a file with the information that a load reads from it, and finds all rows.
    void Open(const std::string& content, const std::string& name = "a.trk") {
        WriteFile(name, content);
        TrackInfo info;
        ASSERT_EQ(CreateConverter(name)->ReadInfo(name, info), 0);
        probe.Open(name, info);
        Prepare();
    }
    void Prepare() {
        while (probe.Prepare(std::chrono::milliseconds(1))) {
        }
    }
    void ExpectHeightsOf(const independent::Track& track) {
        for (int row = 0; row < track.height; ++row)
            for (int column = 0; column < track.width; ++column) {
                const auto cell = static_cast<std::size_t>(row) * static_cast<std::size_t>(track.width) +
                                  static_cast<std::size_t>(column);
                const auto& expected = track.heights[cell];
                const CellHeight found = probe.At(column, row);
                ASSERT_EQ(found.kind, expected ? Kind::Measured : Kind::NotMeasured) << column << " " << row;
                if (expected) {
                    EXPECT_EQ(found.height, *expected) << column << " " << row;
                }
            }
    }

    const TemporaryFolder folder;
    HeightProbe probe;
};

TEST_F(HeightProbeTest, readsEveryCellOfABinaryTrack) {
    Open(independent::BinaryFile(OddMap()));
    ExpectHeightsOf(OddMap());
}

TEST_F(HeightProbeTest, readsEveryCellOfATextTrack) {
    Open(independent::TextFile(OddMap()));
    ExpectHeightsOf(OddMap());
}

TEST_F(HeightProbeTest, readsTextHeightsBeyondRawValues) {
    Open("Info\nheader\n1,1,0.001,0,0,0,3,1\nYX,0,1,2\n0,123456.789,-99999.125,1e6\nEnd\n");
    EXPECT_EQ(probe.At(0, 0).height, 123456.789);
    EXPECT_EQ(probe.At(1, 0).height, -99999.125);
    EXPECT_EQ(probe.At(2, 0).height, 1e6);
}

TEST_F(HeightProbeTest, readsTheRowsAsShown) {
    // Empty lines, quotes, a carriage return, a short row, a NaN height; and a second map after it.
    Open("Info\nheader\n1,1,1,0,0,0,3,3\nYX,0,1,2\n\n0,\"1\",2,3\r\n\n1,4\n2,,nan,6\nEnd\nYX,0,1,2\n0,7,7,"
         "7\nEnd\n");
    EXPECT_EQ(probe.At(0, 0).height, 1);
    EXPECT_EQ(probe.At(2, 0).height, 3);
    EXPECT_EQ(probe.At(0, 1).height, 4);
    EXPECT_EQ(probe.At(1, 1).kind, Kind::NotMeasured);
    EXPECT_EQ(probe.At(0, 2).kind, Kind::NotMeasured);
    EXPECT_EQ(probe.At(1, 2).kind, Kind::NotMeasured);
    EXPECT_EQ(probe.At(2, 2).height, 6);
}

TEST_F(HeightProbeTest, readsNarrowAndWideMaps) {
    for (const auto& [width, height] : {std::pair{1, 20'000}, {3, 5000}, {5000, 3}}) {
        const independent::Track track = SmallTrack({}, width, height);
        Open(independent::TextMap(track));
        for (const int row : {0, 1, height / 2, height - 2, height - 1})
            for (const int column : {0, width / 2, width - 1})
                EXPECT_EQ(probe.At(column, row).height,
                          *track.heights[static_cast<std::size_t>(row) * static_cast<std::size_t>(width) +
                                         static_cast<std::size_t>(column)])
                    << width << ": " << column << " " << row;
    }
}

TEST_F(HeightProbeTest, heightIsUnknownBeforeItsRowIsFound) {
    WriteFile("a.trk", independent::TextFile(OddMap()));
    TrackInfo info;
    ASSERT_EQ(CreateConverter("a.trk")->ReadInfo("a.trk", info), 0);
    probe.Open("a.trk", info);
    EXPECT_EQ(probe.At(1, 0).kind, Kind::Unknown);
    Prepare();
    EXPECT_EQ(probe.At(1, 0).kind, Kind::Measured);
}

TEST_F(HeightProbeTest, cellsOutsideTheMapAreUnknown) {
    Open(independent::BinaryFile(OddMap()));
    for (const auto& [column, row] : {std::pair{-1, 0}, {7, 0}, {0, -1}, {0, 5}})
        EXPECT_EQ(probe.At(column, row).kind, Kind::Unknown) << column << " " << row;
    probe.Close();
    EXPECT_EQ(probe.At(1, 1).kind, Kind::Unknown);
}

TEST_F(HeightProbeTest, changedFileHasNoKnownHeights) {
    for (const std::string& content : {independent::BinaryFile(OddMap()), independent::TextFile(OddMap())}) {
        Open(content);
        ASSERT_EQ(probe.At(1, 0).kind, Kind::Measured);
        std::filesystem::last_write_time("a.trk",
                                         std::filesystem::last_write_time("a.trk") + std::chrono::seconds(2));
        EXPECT_EQ(probe.At(1, 0).kind, Kind::Unknown);
        Open(content);
        std::filesystem::remove("a.trk");
        EXPECT_EQ(probe.At(1, 0).kind, Kind::Unknown);
    }
}

TEST_F(HeightProbeTest, fileOfAnotherMapHasNoKnownHeights) {
    WriteFile("a.trk", independent::BinaryFile(OddMap()));
    TrackInfo info;
    ASSERT_EQ(CreateConverter("a.trk")->ReadInfo("a.trk", info), 0);
    info.width = 6;
    probe.Open("a.trk", info);
    EXPECT_EQ(probe.At(1, 0).kind, Kind::Unknown);
    probe.Open("missing.trk", info);
    EXPECT_EQ(probe.At(1, 0).kind, Kind::Unknown);
}

} // namespace
