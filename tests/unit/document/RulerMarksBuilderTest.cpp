#include "document/RulerMarksBuilder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <limits>
#include <random>

namespace {

/// Image pixels and normalised values differ by a power of two here, so that comparisons are exact.
constexpr int kSide = 1024;
const RulerMarksBuilder kBuilder{QSize(kSide, kSide)};

struct Parameters {
    int length = 100;
    int width = 50;
    int space = 100;
};

TrackPath PathOf(const std::vector<QPointF>& imagePixels, Parameters parameters = {}) {
    TrackPath path;
    for (const QPointF& pixel : imagePixels) {
        path.points.emplace_back(pixel.x() / kSide, pixel.y() / kSide);
        path.methods.push_back(1);
        path.lengths.push_back(parameters.length);
        path.widths.push_back(parameters.width);
        path.spaces.push_back(parameters.space);
    }
    return path;
}

void ExpectAt(const QPointF& normalized, double x, double y) {
    EXPECT_NEAR(normalized.x() * kSide, x, 1e-9);
    EXPECT_NEAR(normalized.y() * kSide, y, 1e-9);
}

TEST(RulerMarks, horizontalSegmentHasVerticalTicksAtEverySpacePlusOne) {
    const auto marks = kBuilder.MarksOfPath(PathOf({{100, 300}, {300, 300}}));
    ASSERT_EQ(marks.size(), 1U);
    ASSERT_EQ(marks[0].tickStarts.size(), 2U);
    ASSERT_EQ(marks[0].tickEnds.size(), 2U);
    ExpectAt(marks[0].tickStarts[0], 100, 350);
    ExpectAt(marks[0].tickEnds[0], 100, 250);
    ExpectAt(marks[0].tickStarts[1], 201, 350);
    ExpectAt(marks[0].tickEnds[1], 201, 250);
}

TEST(RulerMarks, bandIsWidthAlongAndLengthAcross) {
    const auto marks = kBuilder.MarksOfPath(PathOf({{100, 300}, {300, 300}}));
    ASSERT_EQ(marks.at(0).bands.size(), 2U);
    const RulerMarks::Band& band = marks[0].bands[0];
    ExpectAt(band[0], 75, 350);
    ExpectAt(band[1], 75, 250);
    ExpectAt(band[2], 125, 250);
    ExpectAt(band[3], 125, 350);
}

TEST(RulerMarks, ticksAreStrictlyBeforeTheSegmentsEnd) {
    // Ticks at 0 and 101; one at 202 would be on the end.
    EXPECT_EQ(kBuilder.MarksOfPath(PathOf({{100, 300}, {302, 300}})).at(0).bands.size(), 2U);
    EXPECT_EQ(kBuilder.MarksOfPath(PathOf({{100, 300}, {303, 300}})).at(0).bands.size(), 3U);
}

TEST(RulerMarks, spacingContinuesAroundCorners) {
    // 200 long: ticks at 0 and 101, the third would be 2 after the corner.
    const auto marks = kBuilder.MarksOfPath(PathOf({{100, 300}, {300, 300}, {300, 500}}));
    ASSERT_EQ(marks.size(), 2U);
    ASSERT_EQ(marks[1].tickStarts.size(), 2U);
    ExpectAt(marks[1].tickStarts[0], 250, 302);
    ExpectAt(marks[1].tickEnds[0], 350, 302);
    ExpectAt(marks[1].tickStarts[1], 250, 403);
}

TEST(RulerMarks, offsetIsTruncatedAtEachCorner) {
    // 200.25 long: the third tick is 1.75 after the corner, which is truncated to 1.
    const auto marks = kBuilder.MarksOfPath(PathOf({{100, 300}, {300.25, 300}, {300.25, 500}}));
    ExpectAt(marks.at(1).tickStarts.at(0), 250.25, 301);
}

TEST(RulerMarks, segmentShorterThanTheOffsetHasNoTickAndCarriesTheRestOver) {
    // 201 long: the next tick is 1 after the first corner, and the second segment is 1 long: none in
    // it.
    const auto marks = kBuilder.MarksOfPath(PathOf({{100, 300}, {301, 300}, {302, 300}, {402, 300}}));
    ASSERT_EQ(marks.size(), 3U);
    EXPECT_TRUE(marks[1].bands.empty());
    ASSERT_EQ(marks[2].bands.size(), 1U);
    ExpectAt(marks[2].tickStarts[0], 302, 350);
}

TEST(RulerMarks, ticksOfAFallingSegmentArePerpendicularToIt) {
    // 3-4-5: half a tick of 50 is 40 across and 30 down.
    const auto marks = kBuilder.MarksOfPath(PathOf({{100, 100}, {400, 500}}));
    ExpectAt(marks.at(0).tickStarts.at(0), 60, 130);
    ExpectAt(marks.at(0).tickEnds.at(0), 140, 70);
}

TEST(RulerMarks, ticksOfARisingSegmentTurnTheOtherWay) {
    const auto marks = kBuilder.MarksOfPath(PathOf({{100, 500}, {400, 100}}));
    ExpectAt(marks.at(0).tickStarts.at(0), 60, 470);
    ExpectAt(marks.at(0).tickEnds.at(0), 140, 530);
    ExpectAt(marks.at(0).tickStarts.at(1), 60 + 101 * 0.6, 470 - 101 * 0.8);
}

TEST(RulerMarks, eachSegmentUsesItsOwnParameters) {
    TrackPath path = PathOf({{100, 300}, {300, 300}, {300, 500}});
    path.lengths = {20, 60, 999};
    path.widths = {10, 30, 999};
    path.spaces = {49, 24, 999};
    const auto marks = kBuilder.MarksOfPath(path);
    ASSERT_EQ(marks.at(0).bands.size(), 4U); // 0, 50, 100, 150; the next would be on the corner
    ASSERT_EQ(marks.at(1).bands.size(), 8U); // 0, 25 ... 175
    ExpectAt(marks[0].bands[0][0], 95, 310);
    ExpectAt(marks[1].bands[0][0], 270, 285);
}

TEST(RulerMarks, widthAndHeightAreDividedBackSeparately) {
    TrackPath path = PathOf({});
    path = {{{0.25, 0.5}, {0.75, 0.5}}, {1, 1}, {100, 100}, {50, 50}, {100, 100}, {}};
    const auto marks = RulerMarksBuilder(QSize(400, 200)).MarksOfPath(path);
    ASSERT_EQ(marks.at(0).bands.size(), 2U); // 200 pixels long
    EXPECT_NEAR(marks[0].tickStarts[1].x(), 201.0 / 400.0, 1e-12);
    EXPECT_NEAR(marks[0].tickStarts[1].y(), 150.0 / 200.0, 1e-12);
}

TEST(RulerMarks, stepBelowOneCountsAsOne) {
    for (const int space : {0, -1, -100, std::numeric_limits<int>::min()})
        EXPECT_EQ(kBuilder.MarksOfPath(PathOf({{100, 300}, {110, 300}}, {10, 2, space})).at(0).bands.size(),
                  10U)
            << space;
}

TEST(RulerMarks, maximumSpaceGivesOneTick) {
    const Parameters parameters{10, 2, std::numeric_limits<int>::max()};
    EXPECT_EQ(kBuilder.MarksOfPath(PathOf({{100, 300}, {900, 300}}, parameters)).at(0).bands.size(), 1U);
}

TEST(RulerMarks, segmentHasAtMostAHundredThousandTicks) {
    const auto marks = kBuilder.MarksOfPath(PathOf({{0, 300}, {1e12, 300}, {1e12, 400}}, {10, 2, 0}));
    EXPECT_EQ(marks.at(0).bands.size(), 100'000U);
    EXPECT_EQ(marks.at(1).bands.size(), 100U);
}

TEST(RulerMarks, segmentWithoutLengthHasNoTicksAndKeepsTheOffset) {
    const auto marks = kBuilder.MarksOfPath(PathOf({{100, 300}, {300, 300}, {300, 300}, {300, 500}}));
    ASSERT_EQ(marks.size(), 3U);
    EXPECT_TRUE(marks[1].bands.empty());
    ExpectAt(marks[2].tickStarts.at(0), 250, 302);
}

TEST(RulerMarks, nonFinitePointsHaveNoTicks) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinite = std::numeric_limits<double>::infinity();
    for (const double value : {nan, infinite, -infinite}) {
        const auto marks = kBuilder.MarksOfPath(PathOf({{100, 300}, {value, 300}, {100, 300}, {200, 300}}));
        ASSERT_EQ(marks.size(), 3U);
        EXPECT_TRUE(marks[0].bands.empty());
        EXPECT_TRUE(marks[1].bands.empty());
        EXPECT_EQ(marks[2].bands.size(), 1U);
    }
}

TEST(RulerMarks, everyStoredPointIsFinite) {
    const Parameters parameters{1'000'000'000, 1'000'000'000, 100};
    for (const double start : {0.0, 1e-300, 0.1, 1e9, 1e200, 1e304}) {
        for (const double length : {5e-324, 1e-310, 1e-300, 1e-160, 1e-20, 1e-3, 1e150, 1e300, 1e304}) {
            const auto marks = kBuilder.MarksOfPath(
                PathOf({{start, start}, {start + length, start + length / 2}}, parameters));
            for (const RulerMarks::Band& band : marks.at(0).bands)
                for (const QPointF& corner : band)
                    ASSERT_TRUE(std::isfinite(corner.x()) && std::isfinite(corner.y())) << length;
        }
    }
}

TEST(RulerMarks, pathOfOnePointHasNone) {
    EXPECT_TRUE(kBuilder.MarksOfPath(PathOf({{100, 300}})).empty());
    EXPECT_TRUE(kBuilder.MarksOfPath(PathOf({})).empty());
}

/// The same marks computed in another way: by a unit vector along the segment and its normal.
void ExpectMarksOf(const TrackPath& path, const std::vector<RulerMarks>& marks, std::complex<double> image) {
    const auto place = [&](const QPointF& point) {
        return std::complex<double>(point.x() * image.real(), point.y() * image.imag());
    };
    double carried = 0.0;
    ASSERT_EQ(marks.size(), path.points.size() - 1);
    for (std::size_t j = 0; j < marks.size(); ++j) {
        const std::complex<double> from = place(path.points[j]);
        const std::complex<double> along = place(path.points[j + 1]) - from;
        const double length = std::abs(along);
        const std::complex<double> unit = along / length;
        // The tick's first end is to the left in the picture, or below when the segment is horizontal.
        std::complex<double> normal = unit * std::complex<double>(0.0, 1.0);
        if (normal.real() > 0.0 || (normal.real() == 0.0 && normal.imag() < 0.0))
            normal = -normal;
        double at = std::floor(carried);
        std::size_t tick = 0;
        for (; at < length; at += path.spaces[j] + 1, ++tick) {
            ASSERT_LT(tick, marks[j].bands.size());
            const std::complex<double> reach = normal * (path.lengths[j] / 2.0);
            const std::complex<double> back = unit * (path.widths[j] / 2.0);
            const std::complex<double> centre = from + unit * at;
            ASSERT_LT(std::abs(place(marks[j].tickStarts[tick]) - (centre + reach)), 1e-6);
            ASSERT_LT(std::abs(place(marks[j].tickEnds[tick]) - (centre - reach)), 1e-6);
            ASSERT_LT(std::abs(place(marks[j].bands[tick][0]) - (centre - back + reach)), 1e-6);
            ASSERT_LT(std::abs(place(marks[j].bands[tick][1]) - (centre - back - reach)), 1e-6);
            ASSERT_LT(std::abs(place(marks[j].bands[tick][2]) - (centre + back - reach)), 1e-6);
            ASSERT_LT(std::abs(place(marks[j].bands[tick][3]) - (centre + back + reach)), 1e-6);
        }
        ASSERT_EQ(marks[j].bands.size(), tick);
        ASSERT_EQ(marks[j].tickStarts.size(), tick);
        ASSERT_EQ(marks[j].tickEnds.size(), tick);
        carried = at - length;
    }
}

TEST(RulerMarks, agreeWithTheGeometryOnRandomPaths) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> place(0.0, 1.0);
    std::uniform_int_distribution<int> parameter(0, 150);
    for (int round = 0; round < 200; ++round) {
        TrackPath path;
        for (int point = 0; point < 6; ++point) {
            path.points.emplace_back(place(random), place(random));
            path.lengths.push_back(parameter(random));
            path.widths.push_back(parameter(random));
            path.spaces.push_back(parameter(random));
        }
        const auto marks = RulerMarksBuilder(QSize(900, 700)).MarksOfPath(path);
        ASSERT_NO_FATAL_FAILURE(ExpectMarksOf(path, marks, {900.0, 700.0}));
    }
}

std::uint64_t CountOf(const std::vector<QPointF>& imagePixels, int space) {
    return kBuilder.TickCount({PathOf(imagePixels, {100, 50, space})});
}

TEST(RulerTickCount, countsAcrossCornersAndPaths) {
    EXPECT_EQ(CountOf({{100, 300}, {302, 300}}, 100), 2U); // the next one would be on the end
    EXPECT_EQ(CountOf({{100, 300}, {302.5, 300}}, 100), 3U);
    EXPECT_EQ(CountOf({{100, 300}, {300, 300}, {300, 500}}, 100), 4U); // at 2 and 103 after the corner
    const TrackPath path = PathOf({{0, 300}, {0.5, 300}}, {100, 50, 100});
    EXPECT_EQ(kBuilder.TickCount({path, path, path}), 3U);
}

TEST(RulerTickCount, equalsTheMarksOfRandomPaths) {
    std::mt19937 random(11);
    std::uniform_real_distribution<double> place(-200.0, 1200.0);
    std::uniform_int_distribution<int> space(-2, 300);
    std::vector<TrackPath> paths;
    std::uint64_t expected = 0;
    for (int round = 0; round < 200; ++round) {
        TrackPath path = PathOf(std::vector<QPointF>(9));
        for (std::size_t point = 0; point < path.points.size(); ++point) {
            path.points[point] = {place(random) / kSide, place(random) / kSide};
            path.spaces[point] = space(random);
        }
        for (const RulerMarks& marks : kBuilder.MarksOfPath(path))
            expected += marks.tickStarts.size();
        paths.push_back(path);
        ASSERT_EQ(kBuilder.TickCount(paths), expected);
    }
}

TEST(RulerTickCount, isNotLimited) {
    EXPECT_EQ(CountOf({{0, 300}, {1e12, 300}, {1e12, 400}}, 0), 1'000'000'000'100U);
    EXPECT_EQ(CountOf({{0, 300}, {1e12, 300}, {1e12, 400}}, 1), 500'000'000'050U);
    const std::vector<TrackPath> many(3'000, PathOf({{0, 300}, {1000, 300}}, {10, 2, 0}));
    EXPECT_EQ(kBuilder.TickCount(many), 3'000'000U);
}

TEST(RulerTickCount, isUncountableBeyondTheIntegersOfADouble) {
    constexpr double kFar = 4503599627370495.0; // 2^52 - 1
    EXPECT_EQ(CountOf({{0, 0}, {kFar, 0}}, 0), 4503599627370495U);
    EXPECT_EQ(CountOf({{0, 0}, {kFar + 1, 0}}, 0), RulerMarksBuilder::kUncountable);
    EXPECT_EQ(CountOf({{0, 0}, {1e300, 0}, {1e300, 100}}, 100), RulerMarksBuilder::kUncountable);
    std::vector<QPointF> zigzag;
    for (int corner = 0; corner <= 4'200; ++corner)
        zigzag.emplace_back(corner % 2 == 0 ? 0 : kFar, 0);
    EXPECT_EQ(CountOf(zigzag, 0), RulerMarksBuilder::kUncountable);
    const TrackPath half = PathOf({zigzag.begin(), zigzag.begin() + 2'100}, {100, 50, 0});
    EXPECT_EQ(kBuilder.TickCount({half, half}), RulerMarksBuilder::kUncountable);
    EXPECT_EQ(kBuilder.TickCount({half}), 2'099U * 4503599627370495U);
}

TEST(RulerTickCount, isZeroWithoutTicks) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(CountOf({{100, 300}, {100, 300}}, 0), 0U);
    EXPECT_EQ(CountOf({{nan, 300}, {100, 300}}, 0), 0U);
    EXPECT_EQ(CountOf({{100, 300}}, 0), 0U);
    EXPECT_EQ(CountOf({}, 0), 0U);
    EXPECT_EQ(kBuilder.TickCount(std::vector<TrackPath>()), 0U);
    EXPECT_EQ(RulerMarksBuilder(QSize()).TickCount({PathOf({{0, 0}, {100, 0}})}), 0U);
}

TEST(RulerTickCount, includesTicksTooFarAwayForMarks) {
    const TrackPath path = PathOf({{1e307, 0}, {1e307, 100}});
    EXPECT_TRUE(kBuilder.MarksOfPath(path).at(0).tickStarts.empty());
    EXPECT_EQ(kBuilder.TickCount({path}), 1U);
}

} // namespace
