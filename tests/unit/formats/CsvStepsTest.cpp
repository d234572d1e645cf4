#include "document/formats/ConvertCSV.h"
#include "document/formats/HeightColours.h"

#include "LogCapture.h"
#include "TextTrack.h"

#include <QImage>

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;

class CsvSteps : public testing::Test {
  protected:
    const CsvLine& Line(const std::string& content) {
        text = content;
        line.Split(text);
        return line;
    }

    LogCapture log;
    std::string text;
    CsvLine line;
    HeightColours colours{HeightRamp(0, 1)};
};

TEST_F(CsvSteps, refuseALineWithoutFields) {
    TrackInfo info;
    std::vector<double> positions;
    HeightMap heights(2);
    QImage image(2, 1, QImage::Format_RGB888);
    double low = 0.0;
    double high = 0.0;
    EXPECT_EQ(ExtractInfo(Line(""), info), 1);
    EXPECT_EQ(ExtractYValues(Line(""), 2, positions), 1);
    EXPECT_EQ(FindMinMaxHeight(Line(""), 4, positions, low, high), 1);
    EXPECT_EQ(ExtractRowPixelValues(Line(""), 5, colours, image), 1);
    EXPECT_EQ(ExtractRowPixelData(Line(""), 6, 2, 0, 1, heights), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Cannot retrieve height map info from empty item vector",
                                         "ERROR: Cannot retrieve height map y values from empty item vector",
                                         "ERROR: Cannot retrieve pixel values for row=4 empty item vector",
                                         "ERROR: Cannot retrieve pixel values for row=5 empty item vector",
                                         "ERROR: Cannot retrieve pixel values for row=6 empty item vector"));
}

TEST_F(CsvSteps, refuseRowsOutsideTheMap) {
    std::vector<double> positions(1);
    HeightMap heights(2);
    QImage image(2, 1, QImage::Format_RGB888);
    double low = 0.0;
    double high = 0.0;
    for (const std::int64_t row : {std::int64_t{-1}, std::int64_t{1}, std::int64_t{1} << 40U}) {
        const std::string expected =
            "ERROR: Invalid row=" + std::to_string(row) + " for pixel values retrieval";
        EXPECT_EQ(FindMinMaxHeight(Line("0,1,2"), row, positions, low, high), 1);
        EXPECT_EQ(ExtractRowPixelValues(Line("0,1,2"), row, colours, image), 1);
        EXPECT_EQ(ExtractRowPixelData(Line("0,1,2"), row, 2, 0, 1, heights), 1);
        EXPECT_THAT(log.Lines(), ElementsAre(expected, expected, expected));
    }
}

TEST_F(CsvSteps, clearTheColumnPositionsBeforeFillingThem) {
    std::vector<double> positions{9, 9, 9, 9};
    EXPECT_EQ(ExtractYValues(Line("YX,1.5,,x"), 3, positions), 0);
    EXPECT_THAT(positions, ElementsAre(1.5, 0.0, 0.0));
}

TEST_F(CsvSteps, keepTheColumnPositionsWhenTheCountIsWrong) {
    std::vector<double> positions{9};
    EXPECT_EQ(ExtractYValues(Line("YX,1,2"), 3, positions), 1);
    EXPECT_THAT(positions, ElementsAre(9));
}

TEST_F(CsvSteps, readInfoDimensionsAsIntegers) {
    TrackInfo info;
    EXPECT_EQ(ExtractInfo(Line("1e-3,-2, 3,+4,x,,12.9,\"7\""), info), 0);
    EXPECT_EQ(info.xResolution, 1e-3);
    EXPECT_EQ(info.yResolution, -2.0);
    EXPECT_EQ(info.zResolution, 3.0);
    EXPECT_EQ(info.xOffset, 4.0);
    EXPECT_EQ(info.yOffset, 0.0);
    EXPECT_EQ(info.zOffset, 0.0);
    EXPECT_EQ(info.width, 12);
    EXPECT_EQ(info.height, 7);
}

TEST_F(CsvSteps, extendTheRangeByEveryFieldOfARow) {
    std::vector<double> positions(2, -1.0);
    double low = 5.0;
    double high = 5.0;
    EXPECT_EQ(FindMinMaxHeight(Line("20,4.5,,5.25"), 1, positions, low, high), 0);
    EXPECT_THAT(positions, ElementsAre(-1.0, 20.0));
    EXPECT_EQ(low, 4.5);
    EXPECT_EQ(high, 5.25);
}

} // namespace
