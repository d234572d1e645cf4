#include "canvas/CanvasScale.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

const CanvasScale kSmallScale{QSize(200, 100)};

TEST(CanvasScale, normalizesByTheCanvasSize) {
    const QPointF point = kSmallScale.toNormalized({50.0, 25.0});
    EXPECT_EQ(point.x(), 0.25);
    EXPECT_EQ(point.y(), 0.25);
}

TEST(CanvasScale, roundsToTheNearestPixel) {
    EXPECT_EQ(kSmallScale.toWidgetPixels({0.502, 0.494}), QPoint(100, 49));
}

TEST(CanvasScale, roundsHalvesUpwards) {
    EXPECT_EQ(kSmallScale.toWidgetPixels({0.5 / 200.0, 1.5 / 100.0}), QPoint(1, 2));
}

TEST(CanvasScale, roundsNegativeHalvesUpwardsToo) {
    EXPECT_EQ(kSmallScale.toWidgetPixels({-0.5 / 200.0, -1.5 / 100.0}), QPoint(0, -1));
}

TEST(CanvasScale, acceptsNanAndInfinity) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double huge = std::numeric_limits<double>::infinity();
    EXPECT_EQ(kSmallScale.toWidgetPixels({nan, nan}), QPoint(0, 0));
    EXPECT_GT(kSmallScale.toWidgetPixels({huge, 1e300}).x(), 1 << 24);
    EXPECT_LT(kSmallScale.toWidgetPixels({0.0, -huge}).y(), -(1 << 24));
}

TEST(CanvasScale, keepsPositionsInsideTheMargin) {
    EXPECT_EQ(kSmallScale.ClampToMargin({50.0, 50.0}), QPointF(50.0, 50.0));
    EXPECT_EQ(kSmallScale.ClampToMargin({9.0, -3.0}), QPointF(10.0, 10.0));
    EXPECT_EQ(kSmallScale.ClampToMargin({191.0, 500.0}), QPointF(190.0, 90.0));
}

TEST(CanvasScale, lowerBoundWinsOnACanvasTooSmallForBoth) {
    EXPECT_EQ(CanvasScale(QSize(15, 19)).ClampToMargin({12.0, 3.0}), QPointF(10.0, 10.0));
}

TEST(CanvasScale, canvasWithoutAnAreaDividesByOne) {
    EXPECT_EQ(CanvasScale(QSize(0, 0)).toNormalized({3.0, 4.0}), QPointF(3.0, 4.0));
}

} // namespace
