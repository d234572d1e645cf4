#include "canvas/PointFinder.h"

#include "CanvasPaths.h"

#include <gtest/gtest.h>

namespace {

const CanvasScale kSquareScale{QSize(1000, 1000)};

TEST(PointFinder, findsNothingWithoutPaths) {
    EXPECT_FALSE(FindPoint({}, kSquareScale, {0.0, 0.0}));
}

TEST(PointFinder, doesNotFindAPointExactlyFivePixelsAway) {
    EXPECT_FALSE(FindPoint({PathOf(kSquareScale, {{100.0, 100.0}})}, kSquareScale, {105.0, 100.0}));
    EXPECT_FALSE(FindPoint({PathOf(kSquareScale, {{100.0, 100.0}})}, kSquareScale, {103.0, 104.0}));
}

TEST(PointFinder, findsAPointJustNearerThanFivePixels) {
    EXPECT_EQ(FindPoint({PathOf(kSquareScale, {{100.0, 100.0}})}, kSquareScale, {104.99, 100.0}),
              (PointIndex{0, 0}));
    EXPECT_EQ(FindPoint({PathOf(kSquareScale, {{100.0, 100.0}})}, kSquareScale, {100.0, 95.01}),
              (PointIndex{0, 0}));
}

TEST(PointFinder, measuresFromThePointsRoundedPixel) {
    // The point is at 100.4, which is rounded to 100.
    EXPECT_EQ(FindPoint({PathOf(kSquareScale, {{100.4, 100.0}})}, kSquareScale, {95.3, 100.0}),
              (PointIndex{0, 0}));
    EXPECT_FALSE(FindPoint({PathOf(kSquareScale, {{100.4, 100.0}})}, kSquareScale, {105.2, 100.0}));
}

TEST(PointFinder, firstPointFoundWinsOverANearerOne) {
    EXPECT_EQ(FindPoint({PathOf(kSquareScale, {{300.0, 300.0}, {103.0, 100.0}, {100.0, 100.0}})},
                        kSquareScale, {100.0, 100.0}),
              (PointIndex{0, 1}));
}

TEST(PointFinder, earlierPathsPointHidesALaterPaths) {
    const std::vector<TrackPath> paths{PathOf(kSquareScale, {{10.0, 10.0}}),
                                       PathOf(kSquareScale, {{50.0, 50.0}}),
                                       PathOf(kSquareScale, {{50.0, 50.0}})};
    EXPECT_EQ(FindPoint(paths, kSquareScale, {50.0, 50.0}), (PointIndex{1, 0}));
}

} // namespace
