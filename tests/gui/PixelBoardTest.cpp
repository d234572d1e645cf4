#include "raster/PixelBoard.h"

#include <gtest/gtest.h>

#include <QImage>

#include <cstdint>
#include <cstdlib>

namespace {

constexpr QRgb kGround = 0xff102030U;
constexpr QRgb kInk = 0xff40f050U;
/// The middle of a picture of kSide x kSide pixels.
constexpr int kSide = 96;
const QPoint kMiddle(48, 48);

QImage Paper(const QSize& size = {kSide, kSide}) {
    QImage paper(size, QImage::Format_RGB32);
    paper.fill(kGround);
    return paper;
}

/// Where a pixel's centre lies to a line 2 wide with square caps, in whole numbers: half pixels, and areas of
/// them. Negative inside, 0 on an edge, positive outside.
class LineRule {
  public:
    LineRule(const QPoint& from, const QPoint& to) : from(from), way(to - from) {}

    [[nodiscard]] int PlaceOf(int column, int row) const {
        const std::int64_t x = 2 * (column - from.x()) + 1;
        const std::int64_t y = 2 * (row - from.y()) + 1;
        const std::int64_t dx = way.x();
        const std::int64_t dy = way.y();
        const std::int64_t square = dx * dx + dy * dy;
        if (square == 0)
            return std::max(Compare(std::abs(x), 2), Compare(std::abs(y), 2));
        const std::int64_t across = x * dy - y * dx; // both times the length
        const std::int64_t along = x * dx + y * dy;
        const std::int64_t beyond = std::max(-along, along - 2 * square);
        return std::max(Compare(across * across, 4 * square),
                        beyond <= 0 ? -1 : Compare(beyond * beyond, 4 * square));
    }

  private:
    static int Compare(std::int64_t one, std::int64_t other) {
        return one < other ? -1 : one > other ? 1 : 0;
    }

    QPoint from;
    QPoint way;
};

class PixelBoardLines : public ::testing::Test {
  protected:
    /// Draws into the whole picture.
    QImage Drawn(const QPoint& to) {
        QImage paper = Paper();
        PixelBoard(paper, {0, 0}, shapes).Line(kMiddle, to, kInk);
        return paper;
    }

    LineShapes shapes;
};

TEST_F(PixelBoardLines, BetweenWholePixelsCoverThePixelsWithTheirCentreInside) {
    for (int dy = -20; dy <= 20; ++dy)
        for (int dx = -20; dx <= 20; ++dx) {
            const QPoint to = kMiddle + QPoint(dx, dy);
            const LineRule rule(kMiddle, to);
            const QImage drawn = Drawn(to);
            for (int row = 0; row < kSide; ++row)
                for (int column = 0; column < kSide; ++column)
                    if (const int place = rule.PlaceOf(column, row); place != 0) {
                        ASSERT_EQ(drawn.pixel(column, row), place < 0 ? kInk : kGround)
                            << dx << ' ' << dy << " at " << column << ' ' << row;
                    }
        }
}

TEST_F(PixelBoardLines, AreTheSamePixelsWhereverTheyStart) {
    for (int dy = -LineShapes::kFarthest; dy <= LineShapes::kFarthest; dy += 4)
        for (int dx = -LineShapes::kFarthest; dx <= LineShapes::kFarthest; ++dx) {
            QImage paper = Paper();
            const QPoint start(1'000'048, 30'048);
            PixelBoard(paper, start - kMiddle, shapes).Line(start, start + QPoint(dx, dy), kInk);
            ASSERT_EQ(paper, Drawn(kMiddle + QPoint(dx, dy))) << dx << ' ' << dy;
        }
}

TEST_F(PixelBoardLines, AreCutAtTheBordersOfThePart) {
    const QSize part(23, 19);
    for (int dy = -20; dy <= 20; dy += 5)
        for (int dx = -20; dx <= 20; dx += 5) {
            const QPoint to = kMiddle + QPoint(dx, dy);
            const QImage whole = Drawn(to);
            for (const QPoint& corner : {QPoint(40, 40), QPoint(20, 40), QPoint(47, 25), QPoint(0, 0)}) {
                QImage paper = Paper(part);
                PixelBoard(paper, corner, shapes).Line(kMiddle, to, kInk);
                ASSERT_EQ(paper, whole.copy(QRect(corner, part))) << dx << ' ' << dy;
            }
        }
}

TEST(PixelBoardSquares, RoundWholePixelsAreThoseOfAnyCentre) {
    LineShapes shapes;
    for (int y = -8; y <= 28; ++y)
        for (int x = -8; x <= 28; ++x) {
            QImage whole = Paper({20, 20});
            QImage any = Paper({20, 20});
            PixelBoard(whole, {0, 0}, shapes).Square<5>({x, y}, kInk);
            PixelBoard(any, {0, 0}, shapes).Square(QPointF(x, y), 5.0, kInk);
            ASSERT_EQ(whole, any) << x << ' ' << y;
            PixelBoard(whole, {0, 0}, shapes).Square<10>({x, y}, kInk);
            PixelBoard(any, {0, 0}, shapes).Square(QPointF(x, y), 10.0, kInk);
            ASSERT_EQ(whole, any) << x << ' ' << y;
        }
}

} // namespace
