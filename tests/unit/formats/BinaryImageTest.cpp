#include "document/formats/ConvertBIN.h"

#include "DocumentSamples.h"
#include "IndependentRamp.h"
#include "LogCapture.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <QImage>

#include <filesystem>
#include <limits>

namespace {

using independent::BinaryFile;
using independent::BinaryHead;
using independent::Track;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// The colour of a height in the picture.
QColor ColourOf(double height, double low, double high) {
    const auto [red, green, blue] = independent::RampColour(height, low, high);
    return {red, green, blue};
}

class BinaryImage : public testing::Test {
  protected:
    int Read(const std::string& content, const Track& track, double low, double high) {
        WriteFile("a.trk", content);
        return converter.ReadImage("a.trk", InfoOf(track), low, high, image);
    }

    int Read(const Track& track, double low, double high) {
        return Read(BinaryFile(track), track, low, high);
    }

    TemporaryFolder folder;
    LogCapture log;
    ConvertBIN converter;
    QImage image;
};

void ExpectPicture(const QImage& image, const Track& track, double low, double high) {
    ASSERT_EQ(image.format(), QImage::Format_RGB888);
    ASSERT_EQ(image.width(), track.width);
    ASSERT_EQ(image.height(), track.height);
    std::size_t index = 0;
    for (int y = 0; y < track.height; ++y) {
        for (int x = 0; x < track.width; ++x, ++index) {
            const std::int16_t cell = track.cells[index];
            const QColor expected = cell == independent::kNoMeasurement
                                        ? QColor(0, 0, 0)
                                        : ColourOf(cell * track.zResolution + track.zOffset, low, high);
            ASSERT_EQ(image.pixelColor(x, y), expected) << x << ", " << y;
        }
    }
}

TEST_F(BinaryImage, hasTheColourOfEachCell) {
    const Track track = SampleTrack();
    EXPECT_EQ(Read(track, 595, 610), 0);
    ExpectPicture(image, track, 595, 610);
    EXPECT_EQ(image.pixelColor(4, 0), QColor(0, 0, 0)) << "without measurement";
    EXPECT_EQ(image.pixelColor(3, 1), QColor(0, 0, 0)) << "the lowest";
    EXPECT_EQ(image.pixelColor(4, 2), QColor(255, 255, 255)) << "the highest";
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(BinaryImage, isCorrectInEveryRowAtAnyWidth) {
    for (std::int32_t width = 1; width <= 9; ++width) {
        Track track;
        track.width = width;
        track.height = 4;
        for (int i = 0; i < width * 4; ++i)
            track.cells.push_back(static_cast<std::int16_t>(i * 37 % 90));
        EXPECT_EQ(Read(track, 3, 80), 0);
        ExpectPicture(image, track, 3, 80);
    }
}

TEST_F(BinaryImage, canHaveRowsLongerThanTheReadBuffer) {
    Track track;
    track.width = 70'001;
    track.height = 3;
    for (int i = 0; i < track.width * track.height; ++i)
        track.cells.push_back(static_cast<std::int16_t>(i % 8191));
    EXPECT_EQ(Read(track, 0, 8190), 0);
    ExpectPicture(image, track, 0, 8190);
}

TEST_F(BinaryImage, matchesTheFormulaForAllSamples) {
    Track track;
    track.width = 256;
    track.height = 256;
    for (int sample = -32768; sample <= 32767; ++sample)
        track.cells.push_back(static_cast<std::int16_t>(sample));
    track.zResolution = 0.01;
    track.zOffset = -5;
    EXPECT_EQ(Read(track, -300.125, 299.5), 0);
    ExpectPicture(image, track, -300.125, 299.5);
    track.zResolution = -0.02;
    EXPECT_EQ(Read(track, -65.5, 611), 0);
    ExpectPicture(image, track, -65.5, 611);
}

TEST_F(BinaryImage, ofTheRealSurfaceEqualsTheIndependentReaders) {
    const Track track = independent::ReadBinary(FileContent(TestData("fault-binary.trk")));
    TrackInfo info;
    ASSERT_EQ(converter.ReadInfo(TestData("fault-binary.trk"), info), 0);
    double low = 1e38;
    double high = -1e38;
    for (const std::int16_t cell : track.cells) {
        if (cell == independent::kNoMeasurement)
            continue;
        low = std::min(low, cell * track.zResolution + track.zOffset);
        high = std::max(high, cell * track.zResolution + track.zOffset);
    }
    EXPECT_EQ(info.minHeight, low);
    EXPECT_EQ(info.maxHeight, high);
    ASSERT_EQ(converter.ReadImage(TestData("fault-binary.trk"), info, low, high, image), 0);
    ExpectPicture(image, track, low, high);
}

TEST_F(BinaryImage, usesTheGivenInformationsHeights) {
    const Track track = SampleTrack();
    Track scaled = track;
    scaled.zResolution = 2;
    scaled.zOffset = -7;
    EXPECT_EQ(Read(BinaryFile(track), scaled, -90, 160), 0);
    ExpectPicture(image, scaled, -90, 160);
}

TEST_F(BinaryImage, reportsAnImageTooLargeForMemory) {
    Track track;
    track.width = 800'000'000; // at three bytes each, more than a line of pixels may have
    track.height = 1;
    const std::string head = BinaryFile(track).substr(0, 68);
    WriteFile("a.trk", head);
    std::filesystem::resize_file("a.trk", 68 + 1'600'000'000LL);
    EXPECT_EQ(converter.ReadImage("a.trk", InfoOf(track), 0, 1, image), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: [ReadImageFromBin] (EXCEPTION) No image of 800000000 x 1 "
                                         "pixels can be made"));
    track.width = 0;
    EXPECT_EQ(Read(track, 0, 1), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: [ReadImageFromBin] (EXCEPTION) Height map without cells"));
}

TEST_F(BinaryImage, needsARangeAboveZero) {
    const Track track = SampleTrack();
    image = QImage(2, 2, QImage::Format_RGB888);
    for (const auto& [low, high] : std::vector<std::pair<double, double>>{{600, 600},
                                                                          {610, 595},
                                                                          {1e38, -1e38},
                                                                          {32768, -32768},
                                                                          {kNaN, 600},
                                                                          {595, kNaN},
                                                                          {kInfinity, kInfinity}}) {
        EXPECT_EQ(Read(track, low, high), 1);
        EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Invalid depth range for pixel retrieval from CSV"));
    }
    EXPECT_EQ(image.width(), 2) << "the previous picture stays";
}

TEST_F(BinaryImage, isMadeForInfiniteRangesAndScales) {
    Track track = SampleTrack();
    EXPECT_EQ(Read(track, -kInfinity, 600), 0);
    EXPECT_EQ(Read(track, 600, kInfinity), 0);
    EXPECT_EQ(Read(track, -1e308, 1e308), 0);
    for (const double strange : {kNaN, kInfinity, -kInfinity}) {
        track.zResolution = strange;
        EXPECT_EQ(Read(track, 595, 610), 0);
        EXPECT_EQ(image.pixelColor(4, 2), QColor(0, 0, 0)) << "no height, no colour";
    }
}

TEST_F(BinaryImage, reportsAFileThatIsNoTrack) {
    EXPECT_EQ(converter.ReadImage("missing.trk", InfoOf(SampleTrack()), 0, 1, image), 1);
    EXPECT_EQ(Read("Info\n", SampleTrack(), 0, 1), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Could not find file (missing.trk)",
                                         "ERROR: Could not find file (a.trk)"));
}

TEST_F(BinaryImage, reportsAnotherVersion) {
    std::string content = BinaryFile(SampleTrack());
    content[8] = 2;
    EXPECT_EQ(Read(content, SampleTrack(), 595, 610), 1);
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Wrong file version (2)"));
}

TEST_F(BinaryImage, reportsAMapTruncatedAnywhere) {
    const Track track = SampleTrack();
    const std::string head = BinaryHead(track);
    for (std::size_t size = 0; size < head.size(); ++size) {
        EXPECT_EQ(Read(head.substr(0, size), track, 595, 610), 1) << size;
        EXPECT_THAT(log.Lines(),
                    ElementsAre(size < 8 ? "ERROR: Could not find file (a.trk)"
                                : size < 68
                                    ? "ERROR: [ReadImageFromBin] (EXCEPTION) File cut short at byte " +
                                          std::to_string(size)
                                    : "ERROR: [ReadImageFromBin] (EXCEPTION) Height map of 5 x 3 cells "
                                      "is not in the file"))
            << size;
    }
    EXPECT_TRUE(image.isNull());
    EXPECT_EQ(Read(head, track, 595, 610), 0);
}

TEST_F(BinaryImage, reportsImpossibleDimensionsWithoutALargeAllocation) {
    constexpr std::int32_t kMaxInt32 = std::numeric_limits<std::int32_t>::max();
    Track track = SampleTrack();
    for (const auto& [width, height] :
         std::vector<std::pair<std::int32_t, std::int32_t>>{{0, 0},
                                                            {0, 3},
                                                            {5, 0},
                                                            {kMaxInt32, 0},
                                                            {-1, 3},
                                                            {5, -1},
                                                            {-5, -3},
                                                            {kMaxInt32, 1},
                                                            {1, kMaxInt32},
                                                            {kMaxInt32, kMaxInt32},
                                                            {65536, 65536}}) {
        SCOPED_TRACE(std::to_string(width) + " x " + std::to_string(height));
        track.width = width;
        track.height = height;
        EXPECT_EQ(Read(track, 595, 610), 1);
        EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr("ERROR: [ReadImageFromBin] (EXCEPTION) ")));
    }
}

TEST_F(BinaryImage, reportsAFileChangedSinceItsInformationWasRead) {
    Track changed = SampleTrack();
    for (const auto& [width, height] :
         std::vector<std::pair<std::int32_t, std::int32_t>>{{3, 5}, {5, 2}, {4, 3}}) {
        changed.width = width;
        changed.height = height;
        EXPECT_EQ(Read(BinaryFile(changed), SampleTrack(), 595, 610), 1);
        EXPECT_THAT(log.Lines(), ElementsAre("ERROR: [ReadImageFromBin] (EXCEPTION) Height map of " +
                                             std::to_string(width) + " x " + std::to_string(height) +
                                             " cells where 5 x 3 were expected"));
    }
    EXPECT_TRUE(image.isNull());
}

} // namespace
