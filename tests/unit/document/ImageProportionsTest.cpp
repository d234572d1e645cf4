#include "document/TrackGeometry.h"

#include <gtest/gtest.h>

namespace {

TEST(ImageProportions, equalResolutionsKeepTheImagesOwnProportions) {
    EXPECT_EQ(ShownImageSize({300, 200}, 0.1, 0.1), QSize(300, 200));
}

TEST(ImageProportions, twiceTheYResolutionIsTwiceAsTall) {
    EXPECT_EQ(ShownImageSize({300, 200}, 0.1, 0.2), QSize(300, 400));
}

TEST(ImageProportions, twiceTheXResolutionIsTwiceAsWide) {
    EXPECT_EQ(ShownImageSize({300, 200}, 0.2, 0.1), QSize(600, 200));
}

TEST(ImageProportions, scalesBothSides) {
    EXPECT_EQ(ShownImageSize({300, 200}, 0.1, 0.2, 0.05), QSize(15, 20));
    EXPECT_EQ(ShownImageSize({300, 200}, 0.1, 0.1, 4.0), QSize(1200, 800));
}

TEST(ImageProportions, roundsHalvesUpwards) {
    EXPECT_EQ(ShownImageSize({3, 5}, 1.0, 1.0, 0.5), QSize(2, 3));
    EXPECT_EQ(ShownImageSize({1, 1}, 1.0, 2.5), QSize(1, 3));
}

TEST(ImageProportions, neverGivesAnEmptySize) {
    EXPECT_EQ(ShownImageSize({300, 200}, 1.0, 1.0, 0.0), QSize(1, 1));
    EXPECT_EQ(ShownImageSize({300, 200}, 1.0, 1.0, -2.0), QSize(1, 1));
}

TEST(ImageProportions, invalidRatioStillGivesAnArea) {
    for (const double x : {0.0, -1.0, 1e300}) {
        for (const double y : {0.0, -1.0, 1e-300}) {
            const QSize size = ShownImageSize({300, 200}, x, y);
            EXPECT_GE(size.width(), 1);
            EXPECT_GE(size.height(), 1);
        }
    }
}

TEST(ImageProportions, equalResolutionsOfZeroKeepTheImagesOwnProportions) {
    EXPECT_EQ(ShownImageSize({300, 200}, 0.0, 0.0), QSize(300, 200));
}

} // namespace
