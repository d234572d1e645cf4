#include "ToolRun.h"

#include "IndependentRamp.h"
#include "SmallTrack.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <filesystem>

namespace {

using independent::Track;
using testing::HasSubstr;

constexpr QRgb kBlue = 0xff0000ffU;
constexpr QRgb kGreen = 0xff00ff00U;
constexpr QRgb kWhite = 0xffffffffU;

/// 120 x 100 cells whose X resolution is twice the Y resolution, and a path of two points.
Track RenderedTrack() {
    Track track =
        SmallTrack({{0, 0, 0, 0, 0.25, 0.5, 1, 10, 6, 19}, {0, 1, 0, 0, 0.75, 0.5, 1, 10, 6, 19}}, 120, 100);
    track.cells[3] = independent::kNoMeasurement;
    return track;
}

Track SquareSample() {
    Track track = RenderedTrack();
    track.xResolution = track.yResolution;
    return track;
}

class RenderCommand : public testing::Test {
  protected:
    /// The picture that the program draws of a track.
    static QImage Render(const Track& track, const std::vector<std::string>& options) {
        WriteFile("a.trk", BinaryFile(track));
        std::vector<std::string> words = {"render", "a.trk", "a.png"};
        words.insert(words.end(), options.begin(), options.end());
        const ToolResult result = RunTrackTool(words);
        EXPECT_EQ(result.code, 0) << result.errors;
        return QImage(QStringLiteral("a.png")).convertToFormat(QImage::Format_RGB32);
    }

    TemporaryFolder folder;
};

/// One pixel per cell, in the colour of its height.
QImage MapOf(const Track& track) {
    QImage map(track.width, track.height, QImage::Format_RGB32);
    const double low = *std::min_element(track.cells.begin(), track.cells.end(), [](auto one, auto other) {
        return one != independent::kNoMeasurement && (other == independent::kNoMeasurement || one < other);
    });
    const double high = *std::max_element(track.cells.begin(), track.cells.end());
    for (int row = 0; row < track.height; ++row)
        for (int column = 0; column < track.width; ++column) {
            const auto cell = track.cells.at(static_cast<unsigned>(row * track.width + column));
            const auto colour = independent::RampColour(cell, low, high);
            const bool measured = cell != independent::kNoMeasurement;
            map.setPixel(column, row, measured ? qRgb(colour[0], colour[1], colour[2]) : qRgb(0, 0, 0));
        }
    return map;
}

/// The number of pixels that differ between two pictures of the same size.
int CountDifferences(const QImage& one, const QImage& other) {
    EXPECT_EQ(one.size(), other.size());
    int count = 0;
    for (int y = 0; y < one.height(); ++y)
        for (int x = 0; x < one.width(); ++x)
            count += one.pixel(x, y) != other.pixel(x, y) ? 1 : 0;
    return count;
}

TEST_F(RenderCommand, showsEachCellInTheColourOfItsHeight) {
    EXPECT_EQ(CountDifferences(Render(SquareSample(), {"--no-paths"}), MapOf(SquareSample())), 0);
}

TEST_F(RenderCommand, stretchesTheAxisWithTheLargerResolution) {
    const QImage expected =
        MapOf(RenderedTrack()).scaled(240, 100, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    EXPECT_EQ(CountDifferences(Render(RenderedTrack(), {"--no-paths"}), expected), 0);
}

TEST_F(RenderCommand, scalesSmoothly) {
    const QImage map = MapOf(SquareSample());
    EXPECT_EQ(CountDifferences(Render(SquareSample(), {"--no-paths", "--scale", "35"}),
                               map.scaled(42, 35, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)),
              0);
    EXPECT_EQ(CountDifferences(Render(SquareSample(), {"--no-paths", "--scale", "250"}),
                               map.scaled(300, 250, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)),
              0);
}

TEST_F(RenderCommand, fitsIntoASize) {
    EXPECT_EQ(Render(RenderedTrack(), {"--size", "480x480"}).size(), QSize(480, 200));
    EXPECT_EQ(Render(RenderedTrack(), {"--size", "1000x50"}).size(), QSize(120, 50));
    EXPECT_EQ(Render(RenderedTrack(), {"--size", "1x1"}).size(), QSize(1, 1));
}

TEST_F(RenderCommand, drawsPathsAsTheCanvasDoes) {
    const QImage map = Render(RenderedTrack(), {"--no-paths"});
    const QImage picture = Render(RenderedTrack(), {"--no-ruler"});
    // From 60 to 180 of 240 pixels, at 50 of 100.
    QImage expected = map;
    QPainter painter(&expected);
    painter.setPen(QPen(QBrush(QColor::fromRgb(kBlue)), 2.0));
    painter.drawLine(60, 50, 180, 50);
    painter.setPen(QPen(QBrush(QColor::fromRgb(kGreen)), 5.0));
    for (const int centre : {60, 180})
        painter.drawPoint(centre, 50);
    painter.end();
    EXPECT_EQ(CountDifferences(picture, expected), 0);
}

TEST_F(RenderCommand, drawsTheBandsOfTheRuler) {
    const QImage picture = Render(RenderedTrack(), {});
    // Ticks at 0, 20, ... 100 of the 120 pixels between the points, with bands of 6 x 10 pixels around them.
    for (int x = 60; x < 180; x += 20) {
        for (const int side : {-3, 3})
            for (const int end : {-5, 5})
                EXPECT_EQ(picture.pixel(x + side, 50 + end), kGreen) << x << ' ' << side << ' ' << end;
        EXPECT_EQ(picture.pixel(x, 45), kWhite);
        EXPECT_EQ(picture.pixel(x, 55), kWhite);
    }
    EXPECT_NE(picture.pixel(190, 45), kWhite);
}

TEST_F(RenderCommand, showsATextTrackLikeABinaryOne) {
    const QImage binary = Render(RenderedTrack(), {});
    Track text = RenderedTrack();
    text.heights[3].reset();
    WriteFile("b.trk", TextFile(text));
    EXPECT_EQ(RunTrackTool({"render", "b.trk", "b.png"}).code, 0);
    EXPECT_EQ(CountDifferences(QImage(QStringLiteral("b.png")).convertToFormat(QImage::Format_RGB32), binary),
              0);
}

TEST_F(RenderCommand, refusesAPictureThatIsTooLarge) {
    WriteFile("a.trk", BinaryFile(RenderedTrack()));
    const ToolResult wide = RunTrackTool({"render", "a.trk", "a.png", "--scale", "10000"});
    EXPECT_EQ(wide.code, 2);
    EXPECT_THAT(wide.errors, HasSubstr("a picture of 24000 x 10000 pixels"));
    EXPECT_EQ(RunTrackTool({"render", "a.trk", "a.png", "--scale", "0"}).code, 2);
    EXPECT_EQ(RunTrackTool({"render", "a.trk", "a.png", "--size", "0x5"}).code, 2);
    EXPECT_EQ(RunTrackTool({"render", "a.trk", "a.png", "--size", "5"}).code, 2);
    EXPECT_EQ(RunTrackTool({"render", "a.trk", "a.png", "--size", "5x5", "--scale", "10"}).code, 2);
    EXPECT_FALSE(std::filesystem::exists("a.png"));
}

TEST_F(RenderCommand, reportsUnreadableAndUnwritableFiles) {
    Track flat = RenderedTrack();
    flat.cells.assign(flat.cells.size(), 7);
    WriteFile("flat.trk", BinaryFile(flat));
    EXPECT_EQ(RunTrackTool({"render", "flat.trk", "a.png"}).errors,
              "corvane-track render: flat.trk: Invalid depth range for pixel retrieval from CSV\n");
    WriteFile("a.trk", BinaryFile(RenderedTrack()));
    const ToolResult result = RunTrackTool({"render", "a.trk", "missing/a.png"});
    EXPECT_EQ(result.code, 4);
    EXPECT_EQ(result.errors, "corvane-track render: missing/a.png: No such file or directory\n");
}

} // namespace
