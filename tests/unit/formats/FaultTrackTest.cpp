#include "document/formats/ConvertCSV.h"

#include "CommaLocale.h"
#include "IndependentRamp.h"
#include "LogCapture.h"
#include "TemporaryFolder.h"
#include "TextTrack.h"

#include <QImage>

#include <boost/tokenizer.hpp>
#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <optional>

namespace {

using testing::IsEmpty;
using Fields = std::vector<std::string>;

/// The real track as a minimal reader finds it; for a process in the C locale.
struct PlainTrack {
    Fields info;
    Fields columns;
    std::vector<Fields> rows;
    Fields anchor;
    std::vector<Fields> points;

    [[nodiscard]] std::optional<double> Height(std::size_t row, std::size_t column) const {
        const std::string& field = rows.at(row).at(column + 1);
        return field.empty() ? std::nullopt : std::optional(std::strtod(field.c_str(), nullptr));
    }
};

Fields Split(const std::string& line) {
    const boost::tokenizer<boost::escaped_list_separator<char>> tokens(line);
    return {tokens.begin(), tokens.end()};
}

PlainTrack ReadPlainly(const std::string& path) {
    std::ifstream file(path);
    PlainTrack track;
    std::string section;
    for (std::string line; std::getline(file, line);) {
        if (line.empty())
            continue;
        const Fields fields = Split(line);
        const std::string& first = fields.at(0);
        if (first == "End") {
            section.clear();
        } else if (first == "YX") {
            section = first;
            track.columns = fields;
        } else if (first == "Info" || first == "Anchor" || first == "Ruler" || first == "Segment") {
            section = first;
            std::getline(file, line);
        } else if (section == "Info") {
            track.info = fields;
        } else if (section == "YX") {
            track.rows.push_back(fields);
        } else if (section == "Anchor") {
            track.anchor = fields;
        } else if (section == "Segment") {
            track.points.push_back(fields);
        }
    }
    return track;
}

QRgb RampColour(double height, double low, double high) {
    const auto [red, green, blue] = independent::RampColour(height, low, high);
    return qRgb(red, green, blue);
}

double Number(const std::string& field) {
    return std::strtod(field.c_str(), nullptr);
}

int IntegerOf(const std::string& field) {
    return static_cast<int>(std::strtol(field.c_str(), nullptr, 10));
}

class FaultTrack : public testing::Test {
  protected:
    [[nodiscard]] TrackInfo ReadInfo() {
        TrackInfo info = StartInfo();
        EXPECT_EQ(ConvertCSV().ReadInfo(path, info), 0);
        return info;
    }

    void ExpectInfo(const TrackInfo& info) const {
        EXPECT_EQ(info.xResolution, Number(plain.info.at(0)));
        EXPECT_EQ(info.yResolution, Number(plain.info.at(1)));
        EXPECT_EQ(info.zResolution, Number(plain.info.at(2)));
        EXPECT_EQ(info.xOffset, Number(plain.info.at(3)));
        EXPECT_EQ(info.yOffset, Number(plain.info.at(4)));
        EXPECT_EQ(info.zOffset, Number(plain.info.at(5)));
        EXPECT_EQ(info.width, IntegerOf(plain.info.at(6)));
        EXPECT_EQ(info.height, IntegerOf(plain.info.at(7)));
        ASSERT_EQ(info.columnPositions.size(), plain.columns.size() - 1);
        for (std::size_t i = 0; i < info.columnPositions.size(); ++i)
            EXPECT_EQ(info.columnPositions[i], Number(plain.columns[i + 1]));
        ASSERT_EQ(info.rowPositions.size(), plain.rows.size());
        for (std::size_t i = 0; i < info.rowPositions.size(); ++i)
            EXPECT_EQ(info.rowPositions[i], Number(plain.rows[i][0]));
    }

    /// The lowest and highest height.
    [[nodiscard]] std::pair<double, double> PlainRange() const {
        double low = 1e38;
        double high = -1e38;
        for (std::size_t row = 0; row < plain.rows.size(); ++row) {
            for (std::size_t column = 0; column + 1 < plain.columns.size(); ++column) {
                if (const auto height = plain.Height(row, column)) {
                    low = std::min(low, *height);
                    high = std::max(high, *height);
                }
            }
        }
        return {low, high};
    }

    std::string path = TestData("fault.trk");
    PlainTrack plain = ReadPlainly(path);
};

TEST_F(FaultTrack, hasTheInformationOfAnIndependentReader) {
    const TrackInfo info = ReadInfo();
    EXPECT_EQ(info.width, 403);
    EXPECT_EQ(info.height, 344);
    ExpectInfo(info);
    const auto [low, high] = PlainRange();
    EXPECT_EQ(info.minHeight, low);
    EXPECT_EQ(info.maxHeight, high);
    ASSERT_EQ(plain.anchor.size(), 3U);
    EXPECT_EQ(info.anchorX, Number(plain.anchor[0]));
    EXPECT_EQ(info.anchorY, Number(plain.anchor[1]));
    EXPECT_EQ(info.anchorAngle, Number(plain.anchor[2]));
}

TEST_F(FaultTrack, isPaintedAsTheFormulaSaysInEveryPixel) {
    const TrackInfo info = ReadInfo();
    QImage image;
    ASSERT_EQ(ConvertCSV().ReadImage(path, info, info.minHeight, info.maxHeight, image), 0);
    ASSERT_EQ(image.size(), QSize(403, 344));
    int empty = 0;
    int different = 0;
    for (int row = 0; row < image.height(); ++row) {
        for (int column = 0; column < image.width(); ++column) {
            const auto height = plain.Height(static_cast<std::size_t>(row), static_cast<std::size_t>(column));
            empty += height ? 0 : 1;
            const QRgb expected =
                height ? RampColour(*height, info.minHeight, info.maxHeight) : qRgb(0, 0, 0);
            different += image.pixel(column, row) == expected ? 0 : 1;
        }
    }
    EXPECT_EQ(different, 0);
    EXPECT_GT(empty, 0);
}

TEST_F(FaultTrack, hasTheRawHeightsOfAnIndependentReader) {
    const TrackInfo info = ReadInfo();
    HeightMap heights;
    std::int64_t size = 0;
    ASSERT_EQ(ConvertCSV().ReadHeightMap(path, info, heights, size), 0);
    EXPECT_EQ(size, 403 * 403);
    ASSERT_EQ(heights.size(), 403U * 344U);
    int different = 0;
    for (std::size_t cell = 0; cell < heights.size(); ++cell) {
        const auto height = plain.Height(cell / 403, cell % 403);
        const double raw = height ? std::trunc((*height - info.zOffset) / info.zResolution) : -32768.0;
        different += heights[cell] == std::clamp(raw, height ? -32767.0 : -32768.0, 32767.0) ? 0 : 1;
    }
    EXPECT_EQ(different, 0);
}

TEST_F(FaultTrack, hasThePathsOfAnIndependentReader) {
    std::vector<TrackPath> paths;
    ASSERT_EQ(ConvertCSV().ReadPath(path, paths), 0);
    ASSERT_FALSE(plain.points.empty());
    std::size_t next = 0;
    for (std::size_t number = 0; number < paths.size(); ++number) {
        EXPECT_THAT(paths[number].rulerMarks, IsEmpty());
        for (std::size_t point = 0; point < paths[number].points.size(); ++point, ++next) {
            const Fields& fields = plain.points.at(next);
            EXPECT_EQ(IntegerOf(fields.at(0)), static_cast<int>(number));
            EXPECT_EQ(IntegerOf(fields.at(1)), static_cast<int>(point));
            EXPECT_EQ(paths[number].points[point].x(), Number(fields.at(4)));
            EXPECT_EQ(paths[number].points[point].y(), Number(fields.at(5)));
            EXPECT_EQ(paths[number].methods.at(point), IntegerOf(fields.at(6)));
            EXPECT_EQ(paths[number].lengths.at(point), IntegerOf(fields.at(7)));
            EXPECT_EQ(paths[number].widths.at(point), IntegerOf(fields.at(8)));
            EXPECT_EQ(paths[number].spaces.at(point), IntegerOf(fields.at(9)));
        }
    }
    EXPECT_EQ(next, plain.points.size());
}

TEST_F(FaultTrack, isReadTheSameUnderACommaLocale) {
    const TrackInfo before = ReadInfo();
    QImage image;
    ASSERT_EQ(ConvertCSV().ReadImage(path, before, before.minHeight, before.maxHeight, image), 0);

    const CommaLocale locale;
    const TrackInfo info = ReadInfo();
    EXPECT_EQ(info.xResolution, 0.25);
    EXPECT_EQ(info.yResolution, 0.3);
    EXPECT_EQ(info.zResolution, 0.05);
    EXPECT_EQ(info.columnPositions, before.columnPositions);
    EXPECT_EQ(info.rowPositions, before.rowPositions);
    EXPECT_EQ(info.minHeight, before.minHeight);
    EXPECT_EQ(info.maxHeight, before.maxHeight);
    QImage imageUnderComma;
    EXPECT_EQ(ConvertCSV().ReadImage(path, info, info.minHeight, info.maxHeight, imageUnderComma), 0);
    EXPECT_EQ(imageUnderComma, image);
    std::vector<TrackPath> paths;
    EXPECT_EQ(ConvertCSV().ReadPath(path, paths), 0);
    locale.Leave();
    EXPECT_EQ(paths.at(0).points.at(0).x(), Number(plain.points.at(0).at(4)));
}

/// The real track cut after each of its lines: the sections before the cut are read, the cut one has its
/// message.
TEST(CutTrack, isReadUpToTheCut) {
    constexpr int kHeader = 4; // the number of lines up to and including the height map's header, and so on
    constexpr int kLastRow = kHeader + 344;
    constexpr int kAnchor = kLastRow + 3;
    constexpr int kSegment = kAnchor + 9;
    constexpr int kLastPoint = kSegment + 8;
    const TemporaryFolder folder;
    const std::string complete = FileContent(TestData("fault.trk"));
    LogCapture log;
    ConvertCSV converter;
    int lines = 0;
    for (std::size_t end = 0; end < complete.size(); end = complete.find('\n', end) + 1, ++lines) {
        WriteFile("cut.trk", complete.substr(0, end));
        TrackInfo info = StartInfo();
        const bool infoExpected = lines >= kHeader && lines != kAnchor && lines != kAnchor + 1;
        EXPECT_EQ(converter.ReadInfo("cut.trk", info), infoExpected ? 0 : 1) << lines;
        EXPECT_EQ(log.Lines().size(), infoExpected ? 0U : 1U) << lines;

        QImage image;
        const bool imageExpected = lines >= kLastRow;
        EXPECT_EQ(converter.ReadImage("cut.trk", info, info.minHeight, info.maxHeight, image),
                  imageExpected ? 0 : 1)
            << lines;
        const char* const message =
            lines < kHeader ? "ERROR: No height map data" : "ERROR: Height map data is no enough";
        EXPECT_EQ(log.Lines(), imageExpected ? Fields{} : Fields{message}) << lines;

        std::vector<TrackPath> paths;
        EXPECT_EQ(converter.ReadPath("cut.trk", paths), lines >= kSegment ? 0 : 1) << lines;
        int points = 0;
        for (const TrackPath& path : paths)
            points += static_cast<int>(path.points.size());
        EXPECT_EQ(points, std::clamp(lines - kSegment - 1, 0, kLastPoint - kSegment - 1)) << lines;
        EXPECT_THAT(log.Lines(), IsEmpty());
    }
    EXPECT_EQ(lines, kLastPoint + 1);
}

} // namespace
