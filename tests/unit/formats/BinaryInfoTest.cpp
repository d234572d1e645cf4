#include "document/formats/ConvertBIN.h"

#include "DocumentSamples.h"
#include "LogCapture.h"
#include "OrdinaryUser.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <limits>

#include <sys/stat.h>

namespace {

using independent::BinaryAnchor;
using independent::BinaryFile;
using independent::BinaryHead;
using independent::BinaryRulers;
using independent::BinarySegments;
using independent::kNoMeasurement;
using independent::Track;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::size_t kHeaderSize = 68;

/// A temporary folder and the helpers of every test.
class BinaryInfo : public testing::Test {
  protected:
    /// Reads the information of a file with this content.
    int Read(const std::string& content) {
        WriteFile("a.trk", content);
        return converter.ReadInfo("a.trk", info);
    }

    TemporaryFolder folder;
    LogCapture log;
    ConvertBIN converter;
    TrackInfo info;
};

/// A track of one row of these cells.
Track RowOf(std::vector<std::int16_t> cells, double zResolution = 1, double zOffset = 0) {
    Track track;
    track.width = static_cast<std::int32_t>(cells.size());
    track.height = 1;
    track.cells = std::move(cells);
    track.zResolution = zResolution;
    track.zOffset = zOffset;
    return track;
}

TEST_F(BinaryInfo, holdsTheFieldsOfTheHeader) {
    EXPECT_EQ(Read(BinaryFile(SampleTrack())), 0);
    EXPECT_EQ(info.xResolution, 0.25);
    EXPECT_EQ(info.yResolution, 0.5);
    EXPECT_EQ(info.zResolution, 0.125);
    EXPECT_EQ(info.xOffset, -50);
    EXPECT_EQ(info.yOffset, 12.5);
    EXPECT_EQ(info.zOffset, 600);
    EXPECT_EQ(info.width, 5);
    EXPECT_EQ(info.height, 3);
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(BinaryInfo, rangeCoversScaledSamplesWithoutTheEmptyOnes) {
    EXPECT_EQ(Read(BinaryFile(SampleTrack())), 0);
    EXPECT_EQ(info.minHeight, -40 * 0.125 + 600);
    EXPECT_EQ(info.maxHeight, 80 * 0.125 + 600);
}

TEST_F(BinaryInfo, rangeIgnoresTheCallersInitialValues) {
    info.minHeight = -1e9;
    info.maxHeight = 1e9;
    EXPECT_EQ(Read(BinaryFile(SampleTrack())), 0);
    EXPECT_EQ(info.minHeight, 595);
    EXPECT_EQ(info.maxHeight, 610);
}

TEST_F(BinaryInfo, rangeWithoutMeasurementsKeepsItsInitialValues) {
    EXPECT_EQ(Read(BinaryFile(RowOf(std::vector<std::int16_t>(100, kNoMeasurement)))), 0);
    EXPECT_EQ(info.minHeight, 1e38);
    EXPECT_EQ(info.maxHeight, -1e38);
}

TEST_F(BinaryInfo, rangeCoversAllSixteenBits) {
    EXPECT_EQ(Read(BinaryFile(RowOf({kNoMeasurement, 32767, kNoMeasurement}))), 0);
    EXPECT_EQ(info.minHeight, 32767);
    EXPECT_EQ(info.maxHeight, 32767);
    EXPECT_EQ(Read(BinaryFile(RowOf({kNoMeasurement, -32767, 32767}))), 0);
    EXPECT_EQ(info.minHeight, -32767);
    EXPECT_EQ(info.maxHeight, 32767);
}

TEST_F(BinaryInfo, rangeIsReversedByANegativeResolution) {
    EXPECT_EQ(Read(BinaryFile(RowOf({1, 2, 3}, -2, 10))), 0);
    EXPECT_EQ(info.minHeight, 4);
    EXPECT_EQ(info.maxHeight, 8);
}

TEST_F(BinaryInfo, rangeFindsTheExtremesAtAnyPosition) {
    constexpr std::size_t kCells = 67;
    for (std::size_t place = 0; place < kCells; ++place) {
        std::vector<std::int16_t> cells(kCells, 5);
        cells[place] = -300;
        cells[(place + 1) % kCells] = 400;
        EXPECT_EQ(Read(BinaryFile(RowOf(cells))), 0);
        EXPECT_EQ(info.minHeight, -300) << place;
        EXPECT_EQ(info.maxHeight, 400) << place;
    }
}

TEST_F(BinaryInfo, rangeCoversMapsLargerThanTheReadBuffer) {
    Track track;
    track.width = 400;
    track.height = 1000;
    for (const std::size_t place :
         {std::size_t{0}, std::size_t{131071}, std::size_t{131072}, std::size_t{399999}}) {
        track.cells.assign(400000, 7);
        track.cells[place] = -9;
        track.cells[399999 - place] = 1234;
        EXPECT_EQ(Read(BinaryFile(track)), 0);
        EXPECT_EQ(info.minHeight, -9) << place;
        EXPECT_EQ(info.maxHeight, 1234) << place;
    }
}

TEST_F(BinaryInfo, rangeIgnoresNonFiniteHeights) {
    for (const double strange : {kInfinity, -kInfinity, kNaN}) {
        EXPECT_EQ(Read(BinaryFile(RowOf({-1, 0, 1}, strange, 0))), 0);
        EXPECT_EQ(info.minHeight, 1e38);
        EXPECT_EQ(info.maxHeight, -1e38);
        EXPECT_EQ(Read(BinaryFile(RowOf({-1, 0, 1}, 1, strange))), 0);
        EXPECT_EQ(info.minHeight, 1e38);
        EXPECT_EQ(info.maxHeight, -1e38);
    }
    EXPECT_EQ(Read(BinaryFile(RowOf({-20000, -10, 10, 30000}, 1e305, 0))), 0);
    EXPECT_EQ(info.minHeight, -10 * 1e305);
    EXPECT_EQ(info.maxHeight, 10 * 1e305);
}

TEST_F(BinaryInfo, rangeIncludesHeightsBetweenTooLargeOnes) {
    EXPECT_EQ(Read(BinaryFile(RowOf({-10, 10, 30000}, 1e305, 0))), 0);
    EXPECT_EQ(info.minHeight, -10 * 1e305);
    EXPECT_EQ(info.maxHeight, 10 * 1e305);
    EXPECT_EQ(Read(BinaryFile(RowOf({-20000, -10, 10}, 1e305, 0))), 0);
    EXPECT_EQ(info.minHeight, -10 * 1e305);
    EXPECT_EQ(info.maxHeight, 10 * 1e305);
    // Read as a height, the value for "not measured" would be in range here.
    EXPECT_EQ(Read(BinaryFile(RowOf({kNoMeasurement, -20000, -19000, 32767}, 5e303, 1e308))), 0);
    EXPECT_EQ(info.minHeight, -20000 * 5e303 + 1e308);
    EXPECT_EQ(info.maxHeight, -19000 * 5e303 + 1e308);
}

TEST_F(BinaryInfo, keepsTheCallersAnchorAndPositions) {
    info.anchorX = 7;
    info.anchorY = 8;
    info.anchorAngle = 9;
    info.columnPositions = {1, 2};
    info.rowPositions = {3};
    EXPECT_EQ(Read(BinaryFile(SampleTrack())), 0);
    EXPECT_EQ(info.anchorX, 7);
    EXPECT_EQ(info.anchorY, 8);
    EXPECT_EQ(info.anchorAngle, 9);
    EXPECT_THAT(info.columnPositions, ElementsAre(1, 2));
    EXPECT_THAT(info.rowPositions, ElementsAre(3));
}

TEST_F(BinaryInfo, otherVersionReadsAsEmpty) {
    info.width = 77;
    info.minHeight = 32768;
    for (const char version : {'\0', '\2', '\xFF'}) {
        std::string content = BinaryFile(SampleTrack());
        content[8] = version;
        EXPECT_EQ(Read(content), 0);
        EXPECT_EQ(Read(content.substr(0, 12)), 0);
    }
    EXPECT_EQ(info.width, 77);
    EXPECT_EQ(info.xResolution, 0);
    EXPECT_EQ(info.minHeight, 32768);
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(BinaryInfo, reportsAMissingFile) {
    EXPECT_EQ(converter.ReadInfo("mis %s sing.trk", info), 1);
    std::filesystem::create_directory("folder.trk");
    EXPECT_EQ(converter.ReadInfo("folder.trk", info), 1);
    ASSERT_EQ(mkfifo("pipe.trk", 0600), 0);
    EXPECT_EQ(converter.ReadInfo("pipe.trk", info), 1) << "without waiting for a writer";
    EXPECT_EQ(Read(""), 1);
    EXPECT_THAT(log.Lines(),
                ElementsAre("ERROR: Could not find file (mis %s sing.trk)",
                            "ERROR: Could not find file (folder.trk)",
                            "ERROR: Could not find file (pipe.trk)", "ERROR: Could not find file (a.trk)"));
}

TEST_F(BinaryInfo, reportsAnUnreadableFile) {
    WriteFile("a.trk", BinaryFile(SampleTrack()));
    std::filesystem::permissions("a.trk", std::filesystem::perms::none);
    const OrdinaryUser user(".");
    ASSERT_TRUE(user.IsReady());
    EXPECT_EQ(converter.ReadInfo("a.trk", info), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Could not find file (a.trk)"));
}

TEST_F(BinaryInfo, magicWordMayBeAnywhereInEightBytes) {
    std::string content = BinaryFile(SampleTrack());
    for (const char* magic : {"Tra\0\0\0\0\0", "xTraxxxx", "\0\0\0\0\0Tra", "Tracking"}) {
        content.replace(0, 8, magic, 8);
        EXPECT_EQ(Read(content), 0) << magic;
    }
    EXPECT_THAT(log.Lines(), IsEmpty());
    for (const char* magic : {"Trxacxxx", "trackxxx", "xxxxxxTr"}) {
        content.replace(0, 8, magic, 8);
        EXPECT_EQ(Read(content), 1) << magic;
        EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Could not find file (a.trk)"));
    }
}

TEST_F(BinaryInfo, truncatedHeaderFailsAndKeepsTheFieldsBefore) {
    const std::string content = BinaryFile(SampleTrack());
    for (std::size_t size = 0; size < kHeaderSize; ++size) {
        SCOPED_TRACE("cut at " + std::to_string(size));
        info = TrackInfo();
        EXPECT_EQ(Read(content.substr(0, size)), 1);
        EXPECT_THAT(log.Lines(),
                    ElementsAre(size < 8 ? "ERROR: Could not find file (a.trk)"
                                         : "ERROR: [ReadInfoFromBin] (EXCEPTION) File cut short at byte " +
                                               std::to_string(size)));
        EXPECT_EQ(info.xResolution, size >= 20 ? 0.25 : 0);
        EXPECT_EQ(info.yResolution, size >= 28 ? 0.5 : 0);
        EXPECT_EQ(info.zResolution, size >= 36 ? 0.125 : 0);
        EXPECT_EQ(info.xOffset, size >= 44 ? -50 : 0);
        EXPECT_EQ(info.yOffset, size >= 52 ? 12.5 : 0);
        EXPECT_EQ(info.zOffset, size >= 60 ? 600 : 0);
        EXPECT_EQ(info.width, size >= 64 ? 5 : 0);
        EXPECT_EQ(info.height, 0);
    }
}

TEST_F(BinaryInfo, truncatedMapFailsAndKeepsTheRangeOfTheCompleteRows) {
    const std::string content = BinaryFile(SampleTrack());
    for (std::size_t size = kHeaderSize; size < kHeaderSize + 30; ++size) {
        SCOPED_TRACE("cut at " + std::to_string(size));
        EXPECT_EQ(Read(content.substr(0, size)), 1);
        EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr("ERROR: [ReadInfoFromBin] (EXCEPTION) ")));
        EXPECT_EQ(info.width, 5);
        EXPECT_EQ(info.height, 3);
        const std::size_t rows = (size - kHeaderSize) / 10;
        EXPECT_EQ(info.minHeight, rows == 0 ? 1e38 : rows == 1 ? 599 : 595);
        EXPECT_EQ(info.maxHeight, rows == 0 ? -1e38 : rows == 1 ? 602 : 606);
    }
}

TEST_F(BinaryInfo, needsNoBlockAfterTheMapButAnAnchorMustBeComplete) {
    const Track track = SampleTrack();
    const std::string head = BinaryHead(track);
    EXPECT_EQ(Read(head), 0);
    EXPECT_EQ(Read(head + BinaryRulers(track)), 0);
    EXPECT_EQ(Read(head + BinarySegments(track)), 0);
    const std::string anchor = BinaryAnchor(track);
    EXPECT_EQ(Read(head + anchor), 0);
    EXPECT_THAT(log.Lines(), IsEmpty());
    for (std::size_t size = 1; size < anchor.size(); ++size)
        EXPECT_EQ(Read(head + anchor.substr(0, size)), 1) << size;
}

TEST_F(BinaryInfo, reportsImpossibleDimensionsWithoutALargeAllocation) {
    constexpr std::int32_t kMaxInt32 = std::numeric_limits<std::int32_t>::max();
    Track track = SampleTrack();
    for (const auto& [width, height] :
         std::vector<std::pair<std::int32_t, std::int32_t>>{{-1, 3},
                                                            {5, -1},
                                                            {-1, -1},
                                                            {-5, -3},
                                                            {kMaxInt32, 1},
                                                            {1, kMaxInt32},
                                                            {kMaxInt32, kMaxInt32},
                                                            {65536, 65536},
                                                            {-kMaxInt32 - 1, -kMaxInt32 - 1},
                                                            {46341, 46341},
                                                            {5, 100}}) {
        SCOPED_TRACE(std::to_string(width) + " x " + std::to_string(height));
        track.width = width;
        track.height = height;
        EXPECT_EQ(Read(BinaryFile(track)), 1);
        EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr("ERROR: [ReadInfoFromBin] (EXCEPTION) ")));
        EXPECT_EQ(info.width, width);
        EXPECT_EQ(info.height, height);
    }
}

TEST_F(BinaryInfo, negativeDimensionFailsWithAnEmptyRange) {
    Track track = SampleTrack();
    for (const auto& [width, height] :
         std::vector<std::pair<std::int32_t, std::int32_t>>{{-1, 3}, {5, -1}, {-5, -3}}) {
        info.minHeight = 32768;
        info.maxHeight = -32768;
        track.width = width;
        track.height = height;
        EXPECT_EQ(Read(BinaryFile(track)), 1);
        EXPECT_THAT(log.Lines(), ElementsAre("ERROR: [ReadInfoFromBin] (EXCEPTION) Invalid height map size " +
                                             std::to_string(width) + " x " + std::to_string(height)));
        EXPECT_EQ(info.minHeight, 1e38);
        EXPECT_EQ(info.maxHeight, -1e38);
    }
}

TEST_F(BinaryInfo, mapWithoutCellsHasAnEmptyRange) {
    constexpr std::int32_t kMaxInt32 = std::numeric_limits<std::int32_t>::max();
    Track track;
    for (const auto& [width, height] : std::vector<std::pair<std::int32_t, std::int32_t>>{
             {0, 0}, {0, 3}, {3, 0}, {kMaxInt32, 0}, {0, kMaxInt32}}) {
        track.width = width;
        track.height = height;
        EXPECT_EQ(Read(BinaryFile(track)), 0);
        EXPECT_EQ(info.width, width);
        EXPECT_EQ(info.height, height);
        EXPECT_EQ(info.minHeight, 1e38);
        EXPECT_EQ(info.maxHeight, -1e38);
    }
}

TEST_F(BinaryInfo, heightMapIsNotSupported) {
    WriteFile("a.trk", BinaryFile(SampleTrack()));
    std::vector<std::int16_t> heights = {1, 2, 3};
    std::int64_t size = 42;
    EXPECT_EQ(converter.ReadHeightMap("a.trk", InfoOf(SampleTrack()), heights, size), -1);
    EXPECT_THAT(heights, ElementsAre(1, 2, 3));
    EXPECT_EQ(size, 42);
    EXPECT_THAT(log.Lines(), IsEmpty());
}

} // namespace
