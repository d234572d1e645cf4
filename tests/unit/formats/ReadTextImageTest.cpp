#include "document/formats/ConvertCSV.h"

#include "LogCapture.h"
#include "TemporaryFolder.h"
#include "TextTrack.h"

#include <QImage>

#include <gmock/gmock.h>

#include <limits>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const QRgb kBlack = qRgb(0, 0, 0);
const QRgb kWhite = qRgb(255, 255, 255);

class ReadTextImage : public testing::Test {
  protected:
    int Read(const std::string& content, double low = 1.25, double high = 1.31) {
        WriteFile("a.trk", content);
        image = QImage();
        return ConvertCSV().ReadImage("a.trk", info, low, high, image);
    }

    int ReadWith(const std::string& old, const std::string& now) {
        return Read(Replaced(SmallTrack(), old, now));
    }

    /// A map of one row.
    int ReadRow(const std::string& cells, int width, double low, double high) {
        info = InfoOfSize(width, 1);
        return Read("YX\n0," + cells + "\nEnd\n", low, high);
    }

    TemporaryFolder folder;
    LogCapture log;
    TrackInfo info = InfoOfSize(3, 2);
    QImage image;
};

TEST_F(ReadTextImage, hasA24BitPixelForEachCell) {
    EXPECT_EQ(Read(SmallTrack()), 0);
    EXPECT_EQ(image.size(), QSize(3, 2));
    EXPECT_EQ(image.format(), QImage::Format_RGB888);
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(ReadTextImage, paintsEachHeightByTheRamp) {
    EXPECT_EQ(Read(SmallTrack()), 0);
    EXPECT_EQ(image.pixel(0, 0), kBlack);            // the lowest height
    EXPECT_EQ(image.pixel(1, 0), kBlack);            // empty
    EXPECT_EQ(image.pixel(2, 0), qRgb(255, 0, 213)); // 0.05 / 0.06 x 1792 = 1493.3
    EXPECT_EQ(image.pixel(0, 1), qRgb(0, 255, 170)); // 0.02 / 0.06 x 1792 = 597.3
    EXPECT_EQ(image.pixel(1, 1), qRgb(255, 84, 0));  // 0.04 / 0.06 x 1792 = 1194.7
    EXPECT_EQ(image.pixel(2, 1), kWhite);            // the highest height
}

TEST_F(ReadTextImage, paintsEmptyCellsBlackAndReadsOthersAsNumbers) {
    EXPECT_EQ(ReadRow(", ,x,\"\",-0", 5, -1.0, 1.0), 0);
    EXPECT_EQ(image.pixel(0, 0), kBlack);
    EXPECT_EQ(image.pixel(1, 0), qRgb(128, 255, 0)); // 0 is at 896, half way
    EXPECT_EQ(image.pixel(2, 0), qRgb(128, 255, 0));
    EXPECT_EQ(image.pixel(3, 0), kBlack);
    EXPECT_EQ(image.pixel(4, 0), qRgb(128, 255, 0));
}

TEST_F(ReadTextImage, roundsHalfAStepUp) {
    EXPECT_EQ(ReadRow("0.5,0.25,1.5,-0.5,-1", 5, 0.0, 1792.0), 0);
    EXPECT_EQ(image.pixel(0, 0), qRgb(0, 0, 1));
    EXPECT_EQ(image.pixel(1, 0), kBlack);
    EXPECT_EQ(image.pixel(2, 0), qRgb(0, 0, 2));
    EXPECT_EQ(image.pixel(3, 0), kBlack);
    EXPECT_EQ(image.pixel(4, 0), kBlack);
}

TEST_F(ReadTextImage, paintsHeightsBeyondTheRangeBlackOrWhite) {
    EXPECT_EQ(ReadRow("-7,9,1e300,-1e300", 4, 0.0, 1.0), 0);
    EXPECT_EQ(image.pixel(0, 0), kBlack);
    EXPECT_EQ(image.pixel(1, 0), kWhite);
    EXPECT_EQ(image.pixel(2, 0), kWhite);
    EXPECT_EQ(image.pixel(3, 0), kBlack);
}

TEST_F(ReadTextImage, paintsNonFiniteHeightsBlack) {
    EXPECT_EQ(ReadRow("nan,inf,-inf,1e400,1", 5, 0.0, 1.0), 0);
    for (int column = 0; column < 4; ++column)
        EXPECT_EQ(image.pixel(column, 0), kBlack) << column;
    EXPECT_EQ(image.pixel(4, 0), kWhite);
}

TEST_F(ReadTextImage, paintsTheMissingCellsOfAShortRowBlack) {
    EXPECT_EQ(ReadWith("10.1,1.27,1.29,1.31", "10.1,1.31"), 0);
    EXPECT_EQ(image.pixel(0, 1), kWhite);
    EXPECT_EQ(image.pixel(1, 1), kBlack);
    EXPECT_EQ(image.pixel(2, 1), kBlack);
    EXPECT_EQ(ReadWith("10.1,1.27,1.29,1.31", "10.1"), 0);
    EXPECT_EQ(image.pixel(0, 1), kBlack);
}

TEST_F(ReadTextImage, refusesATooLongRow) {
    EXPECT_EQ(ReadWith("1.31\n", "1.31,\n"), 1);
    EXPECT_THAT(log.Lines(),
                ElementsAre("ERROR: Image width=3 does not match pixel value count=4 from csv file"));
    EXPECT_EQ(image.pixel(2, 0), qRgb(255, 0, 213));
    EXPECT_EQ(image.pixel(2, 1), kBlack);
}

TEST_F(ReadTextImage, refusesAnExtraRow) {
    EXPECT_EQ(ReadWith("1.31\n", "1.31\n10.2,1,2,3\n"), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Invalid row=2 for pixel values retrieval"));
}

TEST_F(ReadTextImage, reportsTooFewRows) {
    EXPECT_EQ(ReadWith("10.1,1.27,1.29,1.31\n", ""), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Height map data is no enough"));
    EXPECT_EQ(image.pixel(2, 0), qRgb(255, 0, 213));
}

TEST_F(ReadTextImage, reportsAMissingHeightMap) {
    EXPECT_EQ(Read("Info\nhead\n1,1,1,0,0,0,3,2\n"), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: No height map data"));
    EXPECT_EQ(Read(""), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: No height map data"));
}

TEST_F(ReadTextImage, refusesARangeThatIsNotAboveZero) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const auto& [low, high] : {std::pair{1.25, 1.25}, {2.0, 1.0}, {nan, 1.0}, {0.0, nan}}) {
        EXPECT_EQ(Read(SmallTrack(), low, high), 1);
        EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Invalid depth range for pixel retrieval from CSV"));
    }
}

TEST_F(ReadTextImage, checksRowNumberThenLengthThenRange) {
    info = InfoOfSize(2, 1);
    EXPECT_EQ(Read("YX\n0,1,2,3\n", 1.0, 1.0), 1);
    EXPECT_THAT(log.Lines(),
                ElementsAre("ERROR: Image width=2 does not match pixel value count=3 from csv file"));
    EXPECT_EQ(Read("YX\n0,1,2\n0,1,2,3\n", 0.0, 1.0), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Invalid row=1 for pixel values retrieval"));
}

TEST_F(ReadTextImage, stopsAtTheEndOfTheHeightMap) {
    EXPECT_EQ(Read(SmallTrack() + "YX,0,0,0\n1,2,3,4\n\\x\n"), 0);
}

TEST_F(ReadTextImage, namesTheFileThatItCannotOpen) {
    EXPECT_EQ(ConvertCSV().ReadImage("no %s ü.trk", info, 0, 1, image), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Could not find csv file (no %s ü.trk)"));
}

TEST_F(ReadTextImage, logsTheTokenizersErrors) {
    EXPECT_EQ(ReadWith("10.1,", "10.1\\x,"), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: [ReadImageFromCsv] (EXCEPTION) unknown escape sequence"));
    EXPECT_EQ(image.pixel(2, 0), qRgb(255, 0, 213));
}

TEST_F(ReadTextImage, makesNoImageLargerThanTheFileAllows) {
    constexpr std::int32_t kMaxInt32 = std::numeric_limits<std::int32_t>::max();
    for (const auto& [width, height] : {std::pair{0, 2},
                                        {3, 0},
                                        {-1, 2},
                                        {3, -1},
                                        {kMaxInt32, kMaxInt32},
                                        {kMaxInt32, 2},
                                        {3, kMaxInt32},
                                        {65'536, 65'536},
                                        {-65'536, -65'536}}) {
        info = InfoOfSize(width, height);
        EXPECT_EQ(Read(SmallTrack()), 1);
        EXPECT_TRUE(image.isNull()) << width << " x " << height;
        EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Height map data is no enough"));
    }
}

TEST_F(ReadTextImage, isMadeForASmallMapWithAnyContent) {
    info = InfoOfSize(1 << 20, 1);
    EXPECT_EQ(Read("YX\n1,1\nEnd\n", 0.0, 1.0), 0);
    EXPECT_EQ(image.pixel(0, 0), kWhite);
    EXPECT_EQ(image.pixel((1 << 20) - 1, 0), kBlack);
    image = QImage();
    info = InfoOfSize((1 << 20) + 1, 1);
    EXPECT_EQ(Read("YX\n1,1\nEnd\n", 0.0, 1.0), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Height map data is no enough"));
    EXPECT_TRUE(image.isNull());
}

TEST_F(ReadTextImage, paintsAMapWhoseRowsAreAllShort) {
    info = InfoOfSize(500, 400);
    std::string track = "YX\n";
    for (int row = 0; row < 400; ++row)
        track += "1,1\n";
    EXPECT_EQ(Read(track, 0.0, 1.0), 0);
    EXPECT_EQ(image.pixel(0, 399), kWhite);
    EXPECT_EQ(image.pixel(499, 399), kBlack);
}

} // namespace
