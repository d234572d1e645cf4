#include "canvas/PointFinder.h"

#include "CanvasPaths.h"

#include <gtest/gtest.h>

namespace {

const CanvasScale kScale{QSize(1000, 1000)};

TEST(PointFinder, findsNothingWithoutPaths) {
    EXPECT_FALSE(FindPoint({}, kScale, {0.0, 0.0}));
}

TEST(PointFinder, doesNotFindAPointExactlyFivePixelsAway) {
    EXPECT_FALSE(FindPoint({PathOf(kScale, {{100.0, 100.0}})}, kScale, {105.0, 100.0}));
    EXPECT_FALSE(FindPoint({PathOf(kScale, {{100.0, 100.0}})}, kScale, {103.0, 104.0}));
}

TEST(PointFinder, findsAPointJustNearerThanFivePixels) {
    EXPECT_EQ(FindPoint({PathOf(kScale, {{100.0, 100.0}})}, kScale, {104.99, 100.0}), (PointIndex{0, 0}));
    EXPECT_EQ(FindPoint({PathOf(kScale, {{100.0, 100.0}})}, kScale, {100.0, 95.01}), (PointIndex{0, 0}));
}

TEST(PointFinder, measuresFromThePointsRoundedPixel) {
    // The point is at 100.4, which is rounded to 100.
    EXPECT_EQ(FindPoint({PathOf(kScale, {{100.4, 100.0}})}, kScale, {95.3, 100.0}), (PointIndex{0, 0}));
    EXPECT_FALSE(FindPoint({PathOf(kScale, {{100.4, 100.0}})}, kScale, {105.2, 100.0}));
}

TEST(PointFinder, firstPointFoundWinsOverANearerOne) {
    EXPECT_EQ(
        FindPoint({PathOf(kScale, {{300.0, 300.0}, {103.0, 100.0}, {100.0, 100.0}})}, kScale, {100.0, 100.0}),
        (PointIndex{0, 1}));
}

TEST(PointFinder, earlierPathsPointHidesALaterPaths) {
    const std::vector<TrackPath> paths{PathOf(kScale, {{10.0, 10.0}}), PathOf(kScale, {{50.0, 50.0}}),
                                       PathOf(kScale, {{50.0, 50.0}})};
    EXPECT_EQ(FindPoint(paths, kScale, {50.0, 50.0}), (PointIndex{1, 0}));
}

} // namespace
