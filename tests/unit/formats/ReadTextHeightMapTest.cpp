#include "document/formats/ConvertCSV.h"

#include "LogCapture.h"
#include "TemporaryFolder.h"
#include "TextTrack.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ReadTextHeightMap : public testing::Test {
  protected:
    int Read(const std::string& content) {
        WriteFile("a.trk", content);
        return ConvertCSV().ReadHeightMap("a.trk", info, heights, size);
    }

    int ReadWith(const std::string& old, const std::string& now) {
        return Read(Replaced(SmallTrack(), old, now));
    }

    /// A map of one row.
    int ReadRow(const std::string& cells, int width, double zOffset, double zResolution) {
        info.width = width;
        info.height = 1;
        info.zOffset = zOffset;
        info.zResolution = zResolution;
        return Read("YX\n0," + cells + "\nEnd\n");
    }

    static TrackInfo SmallInfo() {
        TrackInfo info = InfoOfSize(3, 2);
        info.zResolution = 0.125;
        info.zOffset = -5.0;
        return info;
    }

    TemporaryFolder folder;
    LogCapture log;
    TrackInfo info = SmallInfo();
    HeightMap heights;
    std::int64_t size = -7;
};

TEST_F(ReadTextHeightMap, holdsTheHeightsInRawUnits) {
    EXPECT_EQ(Read(SmallTrack()), 0);
    EXPECT_THAT(heights, ElementsAre(50, -32768, 50, 50, 50, 50)); // (1.25 + 5) / 0.125 and up to 50.48
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(ReadTextHeightMap, reportsItsSizeAsWidthByWidth) {
    EXPECT_EQ(Read(SmallTrack()), 0);
    EXPECT_EQ(size, 9);
    EXPECT_EQ(heights.size(), 6U);
}

TEST_F(ReadTextHeightMap, truncatesTowardZero) {
    EXPECT_EQ(ReadRow("2.9,-2.9,0.99,-0.99,3,-3", 6, 0.0, 1.0), 0);
    EXPECT_THAT(heights, ElementsAre(2, -2, 0, 0, 3, -3));
}

TEST_F(ReadTextHeightMap, keepsMeasuredCellsMeasured) {
    EXPECT_EQ(ReadRow("32767,32768,-32767,-32767.9,-32768,-40000,1e300,-1e300", 8, 0.0, 1.0), 0);
    EXPECT_THAT(heights, ElementsAre(32767, 32767, -32767, -32767, -32767, -32767, 32767, -32767));
}

TEST_F(ReadTextHeightMap, marksNonFiniteHeightsAsUnmeasured) {
    EXPECT_EQ(ReadRow("nan,inf,-inf,1e400,1", 5, 0.0, 1.0), 0);
    EXPECT_THAT(heights, ElementsAre(-32768, -32768, -32768, -32768, 1));
}

TEST_F(ReadTextHeightMap, marksAllCellsAsUnmeasuredWithoutAResolution) {
    EXPECT_EQ(ReadRow("1,0,-1,", 4, 0.0, 0.0), 0);
    EXPECT_THAT(heights, ElementsAre(-32768, -32768, -32768, -32768));
    EXPECT_EQ(ReadRow("1,0", 2, std::nan(""), 1.0), 0);
    EXPECT_THAT(heights, ElementsAre(-32768, -32768));
}

TEST_F(ReadTextHeightMap, acceptsANegativeResolution) {
    EXPECT_EQ(ReadRow("3,5", 2, 1.0, -2.0), 0);
    EXPECT_THAT(heights, ElementsAre(-1, -2));
}

TEST_F(ReadTextHeightMap, marksMissingCellsAndRowsAsUnmeasured) {
    EXPECT_EQ(ReadWith("10.0,1.25,,1.30\n10.1,1.27,1.29,1.31\n", "10.0,1.25\n"), 0);
    EXPECT_THAT(heights, ElementsAre(50, -32768, -32768, -32768, -32768, -32768));
}

TEST_F(ReadTextHeightMap, ignoresCellsBeyondTheWidth) {
    EXPECT_EQ(ReadWith("1.30\n", "1.30,99,99\n"), 0);
    EXPECT_THAT(heights, ElementsAre(50, -32768, 50, 50, 50, 50));
}

TEST_F(ReadTextHeightMap, refusesAnExtraRow) {
    EXPECT_EQ(ReadWith("1.31\n", "1.31\n10.2,1,2,3\n"), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Invalid row=2 for pixel values retrieval"));
    EXPECT_THAT(heights, ElementsAre(50, -32768, 50, 50, 50, 50));
}

TEST_F(ReadTextHeightMap, reportsAMissingHeightMap) {
    EXPECT_EQ(Read("Info\nhead\n1,1,1,0,0,0,3,2\n"), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: No height map data"));
    EXPECT_EQ(size, -7);
}

TEST_F(ReadTextHeightMap, allocatesNothingForImpossibleDimensions) {
    constexpr std::int32_t kMaxInt32 = std::numeric_limits<std::int32_t>::max();
    for (const auto& [width, height] :
         {std::pair{0, 2}, {3, 0}, {-1, 2}, {3, -1}, {kMaxInt32, kMaxInt32}, {65'536, 65'536}}) {
        info.width = width;
        info.height = height;
        EXPECT_EQ(Read(SmallTrack()), 1);
        EXPECT_THAT(heights, IsEmpty());
        EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Height map data is no enough"));
    }
}

TEST_F(ReadTextHeightMap, acceptsAnyShortRowsInASmallMap) {
    for (const auto& [width, height] : {std::pair{1024, 1024}, {1 << 20, 1}, {1, 1 << 20}}) {
        info.width = width;
        info.height = height;
        EXPECT_EQ(Read("YX\nEnd\n"), 0);
        EXPECT_EQ(heights, HeightMap(1 << 20, -32768));
        EXPECT_EQ(size, std::int64_t{width} * width);
    }
    heights.clear();
    for (const auto& [width, height] : {std::pair{(1 << 20) + 1, 1}, {1, (1 << 20) + 1}, {1025, 1024}}) {
        info.width = width;
        info.height = height;
        EXPECT_EQ(Read("YX\nEnd\n"), 1);
        EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Height map data is no enough"));
        EXPECT_THAT(heights, IsEmpty());
    }
}

TEST_F(ReadTextHeightMap, refusesMoreCellsThanALargeFileHasBytes) {
    constexpr std::int32_t kBytes = 1'500'000;
    std::string track = "YX\n1,1\nEnd\n";
    track.resize(kBytes, '\n');
    info.width = 1;
    info.height = kBytes + 1;
    EXPECT_EQ(Read(track), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Height map data is no enough"));
    EXPECT_THAT(heights, IsEmpty());
    info.height = kBytes;
    EXPECT_EQ(Read(track), 0);
    EXPECT_EQ(heights.size(), static_cast<std::size_t>(kBytes));
}

TEST_F(ReadTextHeightMap, namesTheFileThatItCannotOpen) {
    EXPECT_EQ(ConvertCSV().ReadHeightMap("no %s ü.trk", info, heights, size), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Could not find csv file (no %s ü.trk)"));
}

TEST_F(ReadTextHeightMap, logsTheTokenizersErrorsLikeTheImage) {
    EXPECT_EQ(ReadWith("10.1,", "10.1\\x,"), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: [ReadImageFromCsv] (EXCEPTION) unknown escape sequence"));
}

/// The same files, read for storage as raw values.
class ReadTextHeightMapToStore : public ReadTextHeightMap {
  protected:
    int ReadToStore(const std::string& content) {
        WriteFile("a.trk", content);
        return ConvertCSV().ReadHeightMapToStore("a.trk", info, heights, size);
    }

    int ReadRowsToStore(const std::string& rows, double zResolution, double zOffset = 0.0) {
        info = InfoOfSize(3, 2);
        info.zResolution = zResolution;
        info.zOffset = zOffset;
        return ReadToStore("YX,0,1,2\n" + rows + "End\n");
    }
};

TEST_F(ReadTextHeightMapToStore, givesTheSameMapAndSize) {
    info.zResolution = 0.03125;
    EXPECT_EQ(ReadToStore(SmallTrack()), 0);
    EXPECT_THAT(heights, ElementsAre(200, -32768, 201, 200, 201, 201)); // (1.25 + 5) x 32 and up to 201.92
    EXPECT_EQ(size, 9);
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(ReadTextHeightMapToStore, refusesAMapThatLacksRows) {
    EXPECT_EQ(ReadToStore(Replaced(SmallTrack(), "10.1,1.27,1.29,1.31\n", "")), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Height map data is no enough"));
}

TEST_F(ReadTextHeightMapToStore, refusesAResolutionOfZero) {
    EXPECT_EQ(ReadRowsToStore("0,,5,6\n1,7,8,9\n", 0.0, 2.5), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Cannot store row=0 column=1 height=5: ZResolution=0 and "
                                         "ZOffset=2.5 give it no raw value"));
}

TEST_F(ReadTextHeightMapToStore, refusesHeightsThatWouldAllBecomeEqual) {
    EXPECT_EQ(ReadRowsToStore("0,5,5,\n1,5,8.25,9\n", 10.0), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Cannot store row=1 column=1 height=8.25: with "
                                         "ZResolution=10 all heights become the raw value 0"));
}

TEST_F(ReadTextHeightMapToStore, refusesHeightsBeyondSixteenBits) {
    EXPECT_EQ(ReadRowsToStore("0,5,20,32\n1,33,70,40\n", 0.001), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Cannot store row=1 column=0 height=33: its raw value 33000 "
                                         "is beyond 16 bits"));
}

/// Plain reading stays tolerant.
TEST_F(ReadTextHeightMapToStore, refusesHeightsThatPlainReadingAccepts) {
    EXPECT_EQ(ReadRowsToStore("0,1,40000,2\n1,1,1,1\n", 1.0), 1);
    EXPECT_EQ(ConvertCSV().ReadHeightMap("a.trk", info, heights, size), 0);
    EXPECT_THAT(heights, ElementsAre(1, 32767, 2, 1, 1, 1));
}

TEST_F(ReadTextHeightMapToStore, acceptsAMapWithoutMeasurements) {
    EXPECT_EQ(ReadRowsToStore("0,,,\n1,nan,,inf\n", 0.0), 0);
    EXPECT_THAT(log.Lines(), IsEmpty());
}

} // namespace
