#include "document/RulerMarksCache.h"

#include <gtest/gtest.h>

namespace {

constexpr QSize kImage(200'000, 10);

/// A horizontal path of one segment with this number of ticks.
TrackPath PathOfTicks(int ticks) {
    TrackPath path;
    path.points = {{0.0, 0.5}, {static_cast<double>(ticks) / kImage.width(), 0.5}};
    path.methods = {1, 1};
    path.lengths = {5, 5};
    path.widths = {1, 1};
    path.spaces = {0, 0};
    return path;
}

std::vector<std::size_t> Ticks(const std::vector<TrackPath>& paths) {
    std::vector<std::size_t> ticks;
    for (const TrackPath& path : paths)
        ticks.push_back(path.rulerMarks.at(0).bands.size());
    return ticks;
}

class RulerMarksOfAll : public ::testing::Test {
  protected:
    void Update() {
        cache.Update(paths, kImage, [](std::size_t, const RulerMarks&) {});
    }
    void Lengthen(std::size_t path, int ticks) {
        paths[path].points[1] = PathOfTicks(ticks).points[1];
        cache.Follow(PointMoved{{static_cast<int>(path), 1}, {}});
    }

    std::vector<TrackPath> paths;
    RulerMarksCache cache;
};

TEST_F(RulerMarksOfAll, haveAtMostTwoMillionTicks) {
    paths.assign(23, PathOfTicks(100'000));
    paths[0] = PathOfTicks(10);
    Update();
    std::vector<std::size_t> expected(23, 100'000);
    expected[0] = 10;
    expected[20] = 99'990;
    expected[21] = expected[22] = 0;
    EXPECT_EQ(Ticks(paths), expected);
}

TEST_F(RulerMarksOfAll, giveFreedTicksToLaterSegments) {
    paths.assign(22, PathOfTicks(100'000));
    Update();
    ASSERT_EQ(Ticks(paths)[20], 0U);
    Lengthen(3, 40'000);
    Update();
    EXPECT_EQ(Ticks(paths)[3], 40'000U);
    EXPECT_EQ(Ticks(paths)[20], 60'000U);
    EXPECT_EQ(Ticks(paths)[21], 0U);
}

TEST_F(RulerMarksOfAll, takeTicksFromLaterSegmentsForEarlierOnes) {
    paths.assign(21, PathOfTicks(100'000));
    paths[0] = PathOfTicks(10);
    paths[20] = PathOfTicks(50'000);
    Update();
    ASSERT_EQ(Ticks(paths)[20], 50'000U);
    Lengthen(0, 90'000);
    Update();
    EXPECT_EQ(Ticks(paths)[0], 90'000U);
    EXPECT_EQ(Ticks(paths)[20], 10'000U);
}

TEST_F(RulerMarksOfAll, doNotCountTicksOfRemovedSegments) {
    paths.assign(20, PathOfTicks(100'000));
    paths[19] = PathOfTicks(50'000);
    Update();
    paths[0].points.pop_back();
    cache.Follow(PointRemoved{{0, 1}});
    Update();
    paths[19].points[1] = PathOfTicks(100'000).points[1];
    cache.Follow(PointMoved{{19, 1}, {}});
    paths.push_back(PathOfTicks(90'000));
    cache.Follow(PathInserted{20});
    Update();
    EXPECT_EQ(paths[19].rulerMarks.at(0).bands.size(), 100'000U);
    EXPECT_EQ(paths[20].rulerMarks.at(0).bands.size(), 90'000U);
}

} // namespace
