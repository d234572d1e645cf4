#include "document/TrackGeometry.h"

#include <gtest/gtest.h>

namespace {

/// A map that is 100 world units wide and 50 high.
const WorldTransform kWorld{1, 7, 9, 100, 50};

TrackPath PathThrough(const std::vector<QPointF>& points) {
    TrackPath path;
    for (const QPointF& point : points)
        path.AppendPoint({.position = point});
    return path;
}

TEST(PathLength, isInWorldUnits) {
    // 30 across and 40 down, then 10 up, in world units.
    const TrackPath path = PathThrough({{0.1, 0.1}, {0.4, 0.9}, {0.4, 0.7}});
    const auto lengths = LengthsAt(1, path, kWorld);
    ASSERT_TRUE(lengths);
    EXPECT_DOUBLE_EQ(lengths->segment, 50);
    EXPECT_DOUBLE_EQ(lengths->path, 60);
    EXPECT_DOUBLE_EQ(LengthsAt(2, path, kWorld)->segment, 10);
    EXPECT_DOUBLE_EQ(LengthsAt(0, path, kWorld)->segment, 50) << "the first point starts its segment";
}

TEST(PathLength, isZeroForOnePoint) {
    EXPECT_FALSE(LengthsAt(0, PathThrough({{0.1, 0.1}}), kWorld));
}

TEST(PathLength, includesTheSegmentBeingDrawn) {
    const DrawnLengths lengths = LengthsTo({0.4, 0.9}, PathThrough({{0.0, 0.1}, {0.1, 0.1}}), kWorld);
    EXPECT_DOUBLE_EQ(lengths.segment, 50);
    EXPECT_DOUBLE_EQ(lengths.path, 60);
}

} // namespace
