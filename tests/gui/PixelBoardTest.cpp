#include "raster/PixelBoard.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

#include <functional>
#include <random>

namespace {

constexpr QRgb kGround = 0xff102030U;
constexpr QRgb kInk = 0xff40f050U;
constexpr std::array kRatios = {1.0, 1.25, 1.5, 1.75, 2.0, 3.0};
/// The centre of a picture of kSide x kSide pixels.
constexpr int kSide = 96;
const QPoint kMiddle(48, 48);

QImage Paper(const QSize& size = {kSide, kSide}) {
    QImage paper(size, QImage::Format_RGB32);
    paper.fill(kGround);
    return paper;
}

/// What QPainter draws with a solid pen of a width.
QImage Painted(const QSize& size, double width, double ratio, const std::function<void(QPainter&)>& draw) {
    QImage paper = Paper(size);
    paper.setDevicePixelRatio(ratio);
    QPainter painter(&paper);
    painter.setPen(QPen(QBrush(QColor::fromRgb(kInk)), width));
    draw(painter);
    painter.end();
    paper.setDevicePixelRatio(1.0);
    return paper;
}

class PixelBoardTest : public ::testing::Test {
  protected:
    /// What a board draws into a part of the picture.
    QImage Drawn(const QRect& part, const std::function<void(PixelBoard&)>& draw) {
        QImage paper = Paper(part.size());
        PixelBoard board(paper, part.topLeft(), shapes);
        draw(board);
        return paper;
    }
    QImage Drawn(const QSize& size, const std::function<void(PixelBoard&)>& draw) {
        return Drawn(QRect(QPoint(0, 0), size), draw);
    }
    /// A line from the middle, in all of the picture.
    QImage LineTo(const QPoint& to) {
        return Drawn(QSize(kSide, kSide), [&](PixelBoard& board) { board.Line(kMiddle, to, kInk); });
    }

    ShapeCache shapes;
};

using PixelBoardLines = PixelBoardTest;
using PixelBoardDots = PixelBoardTest;

TEST_F(PixelBoardLines, shortOnesEqualQPainters) {
    for (int dy = -20; dy <= 20; ++dy)
        for (int dx = -20; dx <= 20; ++dx) {
            const QPoint to = kMiddle + QPoint(dx, dy);
            ASSERT_EQ(LineTo(to), Painted({kSide, kSide}, 2.0, 1.0,
                                          [&](QPainter& painter) { painter.drawLine(kMiddle, to); }))
                << dx << ' ' << dy;
        }
}

TEST_F(PixelBoardLines, longOnesEqualQPainters) {
    constexpr int kWidth = 1100;
    constexpr int kHeight = 700;
    std::mt19937 random(7);
    std::uniform_int_distribution<int> across(4, kWidth - 5);
    std::uniform_int_distribution<int> down(4, kHeight - 5);
    for (int count = 0; count < 200; ++count) {
        const QPoint from(across(random), down(random));
        QPoint to(across(random), down(random));
        if (count % 4 == 1) // nearly horizontal, nearly vertical
            to.setY(std::min(from.y() + count % 3, kHeight - 5));
        if (count % 4 == 2)
            to.setX(std::min(from.x() + count % 3, kWidth - 5));
        ASSERT_EQ(
            Drawn(QSize(kWidth, kHeight), [&](PixelBoard& board) { board.Line(from, to, kInk); }),
            Painted({kWidth, kHeight}, 2.0, 1.0, [&](QPainter& painter) { painter.drawLine(from, to); }))
            << from.x() << ',' << from.y() << " to " << to.x() << ',' << to.y();
    }
}

TEST_F(PixelBoardLines, onScaledDesktopsEqualQPainters) {
    constexpr int kWidth = 700;
    constexpr int kHeight = 500;
    std::mt19937 random(8);
    std::uniform_int_distribution<int> across(8, 200);
    std::uniform_int_distribution<int> down(8, 140);
    for (const double ratio : kRatios)
        for (int count = 0; count < 100; ++count) {
            const QPoint from(across(random), down(random));
            const QPoint to(across(random), down(random));
            if (from == to)
                continue;
            ASSERT_EQ(Drawn(QSize(kWidth, kHeight),
                            [&](PixelBoard& board) {
                                board.Line(QPointF(from) * ratio, QPointF(to) * ratio, 2.0 * ratio, kInk);
                            }),
                      Painted({kWidth, kHeight}, 2.0, ratio,
                              [&](QPainter& painter) { painter.drawLine(from, to); }))
                << ratio << ": " << from.x() << ',' << from.y() << " to " << to.x() << ',' << to.y();
        }
}

TEST_F(PixelBoardLines, haveTheSamePixelsWhereverTheyStart) {
    for (int dy = -ShapeCache::kMaxDelta - 4; dy <= ShapeCache::kMaxDelta + 4; dy += 4)
        for (int dx = -ShapeCache::kMaxDelta - 4; dx <= ShapeCache::kMaxDelta + 4; ++dx) {
            const QPoint start(1'000'048, 30'048);
            const QRect part(start - kMiddle, QSize(kSide, kSide));
            const QImage far =
                Drawn(part, [&](PixelBoard& board) { board.Line(start, start + QPoint(dx, dy), kInk); });
            ASSERT_EQ(far, LineTo(kMiddle + QPoint(dx, dy))) << dx << ' ' << dy;
        }
}

TEST_F(PixelBoardLines, areClippedToThePart) {
    const QSize part(23, 19);
    for (int dy = -20; dy <= 20; dy += 5)
        for (int dx = -20; dx <= 20; dx += 5) {
            const QPoint to = kMiddle + QPoint(dx, dy);
            const QImage full = LineTo(to);
            for (const QPoint& corner : {QPoint(40, 40), QPoint(20, 40), QPoint(47, 25), QPoint(0, 0)}) {
                const QRect place(corner, part);
                ASSERT_EQ(Drawn(place, [&](PixelBoard& board) { board.Line(kMiddle, to, kInk); }),
                          full.copy(place))
                    << dx << ' ' << dy;
            }
        }
}

TEST_F(PixelBoardLines, farOutsideThePartAreNotDrawn) {
    for (const QPoint& from : {QPoint(-1'000'000'000, -1'000'000'000), QPoint(1'000'000'000, -5)})
        for (const QPoint& to : {QPoint(-1'000'000'000, 1'000'000'000), QPoint(1'000'000'000, 1'000'000'000)})
            EXPECT_EQ(Drawn(QSize(kSide, kSide), [&](PixelBoard& board) { board.Line(from, to, kInk); }),
                      Paper());
}

/// Dots far enough from each other that their pixels do not overlap; QPainter clips what leaves a picture at
/// its left.
std::vector<QPoint> DotsFrom(int firstColumn, const QSize& size, int row) {
    constexpr int kApart = 16;
    std::vector<QPoint> dots;
    for (int column = firstColumn; column < size.width() - 3; column += kApart)
        dots.emplace_back(column, row);
    return dots;
}

TEST_F(PixelBoardDots, equalQPaintersAtEveryColumnAndRow) {
    const QSize size(2200, 120);
    for (int row = 0; row < size.height(); ++row) {
        const std::vector<QPoint> dots = DotsFrom(3 + row % 16, size, row);
        ASSERT_EQ(Drawn(size,
                        [&](PixelBoard& board) {
                            for (const QPoint& dot : dots)
                                board.Dot(dot, kInk);
                        }),
                  Painted(size, 5.0, 1.0,
                          [&](QPainter& painter) {
                              for (const QPoint& dot : dots)
                                  painter.drawPoint(dot);
                          }))
            << "row " << row;
    }
}

TEST_F(PixelBoardDots, lowInATallPictureEqualQPainters) {
    const QSize size(64, 9000);
    const auto forEachDot = [&](const std::function<void(const QPoint&)>& draw) {
        for (int row = 8; row < size.height(); row += 9)
            draw({16 + row % 32, row});
    };
    EXPECT_EQ(
        Drawn(size, [&](PixelBoard& board) { forEachDot([&](const QPoint& dot) { board.Dot(dot, kInk); }); }),
        Painted(size, 5.0, 1.0,
                [&](QPainter& painter) { forEachDot([&](const QPoint& dot) { painter.drawPoint(dot); }); }));
}

TEST_F(PixelBoardDots, ofAnyWidthAndScaleEqualQPainters) {
    const QSize size(700, 300);
    for (const double ratio : kRatios)
        for (const double width : {5.0, 10.0})
            for (int first = 0; first < 16; ++first) {
                std::vector<QPoint> dots;
                for (int column = first; column < size.width() / ratio; column += 16)
                    dots.emplace_back(column, 3 + (first * 5 + column) % 80);
                ASSERT_EQ(Drawn(size,
                                [&](PixelBoard& board) {
                                    for (const QPoint& dot : dots)
                                        board.Dot(dot, width, ratio, kInk);
                                }),
                          Painted(size, width, ratio,
                                  [&](QPainter& painter) {
                                      for (const QPoint& dot : dots)
                                          painter.drawPoint(dot);
                                  }))
                    << ratio << ' ' << width << ' ' << first;
            }
}

TEST_F(PixelBoardDots, areClippedToThePart) {
    for (int y = 20; y <= 60; ++y)
        for (int x = 20; x <= 60; ++x) {
            const auto draw = [&](PixelBoard& board) { board.Dot(QPoint(x, y), kInk); };
            const QRect part(30, 30, 20, 20);
            ASSERT_EQ(Drawn(part, draw), Drawn(QSize(kSide, kSide), draw).copy(part)) << x << ' ' << y;
        }
}

} // namespace
