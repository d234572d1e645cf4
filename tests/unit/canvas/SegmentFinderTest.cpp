#include "canvas/PointFinder.h"

#include "CanvasPaths.h"

#include <gtest/gtest.h>

namespace {

const CanvasScale kWideScale{QSize(400, 200)};

TEST(SegmentFinder, findsNothingWhereThereIsNoSegment) {
    EXPECT_FALSE(FindSegment({}, kWideScale, {10, 10}));
    EXPECT_FALSE(FindSegment({PathOf(kWideScale, {{10, 10}})}, kWideScale, {10, 10}));
    EXPECT_FALSE(
        FindSegment({PathOf(kWideScale, {{10, 10}, {100, 10}}), PathOf(kWideScale, {{10, 90}, {100, 90}})},
                    kWideScale, {50, 50}));
}

TEST(SegmentFinder, findsThePositionUnderTheCursor) {
    const auto found = FindSegment(
        {PathOf(kWideScale, {{300, 10}, {310, 10}}), PathOf(kWideScale, {{10, 50}, {110, 50}, {110, 150}})},
        kWideScale, {60, 53});
    ASSERT_TRUE(found);
    EXPECT_EQ(found->start, (PointIndex{1, 0}));
    EXPECT_DOUBLE_EQ(found->position.x(), 60.0 / 400);
    EXPECT_DOUBLE_EQ(found->position.y(), 50.0 / 200);
}

TEST(SegmentFinder, findsTheNearestPositionInPixelsNotInNormalisedUnits) {
    // Along the diagonal of a square of pixels, the foot of the perpendicular from (61, 59) is (60, 60).
    const auto found = FindSegment({PathOf(kWideScale, {{10, 10}, {110, 110}})}, kWideScale, {61, 59});
    ASSERT_TRUE(found);
    EXPECT_DOUBLE_EQ(found->position.x(), 60.0 / 400);
    EXPECT_DOUBLE_EQ(found->position.y(), 60.0 / 200);
}

TEST(SegmentFinder, doesNotFindASegmentFivePixelsAway) {
    const std::vector<TrackPath> paths{PathOf(kWideScale, {{10, 50}, {110, 50}})};
    EXPECT_FALSE(FindSegment(paths, kWideScale, {60, 55}));
    EXPECT_TRUE(FindSegment(paths, kWideScale, {60, 54.9}));
    EXPECT_FALSE(FindSegment(paths, kWideScale, {116, 50})) << "beyond its end";
}

TEST(SegmentFinder, findsTheNearestOfSeveral) {
    const std::vector<TrackPath> paths{PathOf(kWideScale, {{10, 50}, {110, 50}, {110, 54}, {10, 54}})};
    EXPECT_EQ(FindSegment(paths, kWideScale, {60, 53})->start, (PointIndex{0, 2}));
    EXPECT_EQ(FindSegment(paths, kWideScale, {60, 51})->start, (PointIndex{0, 0}));
}

TEST(SegmentFinder, segmentWithoutLengthIsItsPoint) {
    const auto found = FindSegment({PathOf(kWideScale, {{10, 50}, {10, 50}})}, kWideScale, {12, 50});
    ASSERT_TRUE(found);
    EXPECT_EQ(found->position, kWideScale.toNormalized({10, 50}));
}

} // namespace
