#include "CanvasFixture.h"

#include <QFontMetrics>
#include <QPainter>

namespace {

const QRgb kGrey = qRgb(90, 90, 90);
const QRgb kBlue = qRgb(0, 0, 255);
const QRgb kRed = qRgb(255, 0, 0);
const QRgb kGreen = qRgb(0, 255, 0);
const QRgb kWhite = qRgb(255, 255, 255);

/// Pixels of one colour inside a rectangle.
int Count(const QImage& picture, QRgb colour, const QRect& where) {
    int count = 0;
    const QRect inside = where.intersected(picture.rect());
    for (int y = inside.top(); y <= inside.bottom(); ++y)
        for (int x = inside.left(); x <= inside.right(); ++x)
            count += picture.pixel(x, y) == colour ? 1 : 0;
    return count;
}

int Count(const QImage& picture, QRgb colour) {
    return Count(picture, colour, picture.rect());
}

/// The smallest rectangle around all pixels of one colour.
QRect Extent(const QImage& picture, QRgb colour) {
    QRect extent;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (picture.pixel(x, y) == colour)
                extent |= QRect(x, y, 1, 1);
    return extent;
}

class CanvasPainting : public CanvasTest {
  protected:
    /// Two distant points, closed, and no segment selected.
    void DrawLevelLine() {
        mouse.Draw({{50, 100}, {250, 100}});
        window.canvas->setCurrentPath(9);
        mouse.Move({390, 290});
    }
};

TEST_F(CanvasPainting, paintsNothingWithoutAnImage) {
    DrawLevelLine();
    window.canvas->setText(QStringLiteral("A label would show this, and its frame."));
    window.canvas->setFrameShape(QFrame::Box);
    QImage paper(400, 300, QImage::Format_RGB32);
    paper.fill(qRgb(7, 8, 9));
    window.canvas->render(&paper, {}, {}, QWidget::RenderFlags());
    EXPECT_EQ(Count(paper, qRgb(7, 8, 9)), 400 * 300);
}

TEST_F(CanvasPainting, imageFillsTheCanvas) {
    EXPECT_EQ(Count(window.Picture(), kGrey), 400 * 300);
}

TEST_F(CanvasPainting, segmentIsABlueLineTwoPixelsWide) {
    DrawLevelLine();
    const QImage picture = window.Picture();
    EXPECT_EQ(Count(picture, kBlue, QRect(150, 0, 1, 300)), 2);
    EXPECT_EQ(Count(picture, kBlue, QRect(100, 99, 100, 2)), 200);
}

TEST_F(CanvasPainting, paintsEverySegmentOfEveryPath) {
    mouse.Draw({{50, 50}, {150, 50}, {150, 150}});
    mouse.Move({250, 250});
    mouse.Draw({{200, 50}, {300, 50}});
    window.canvas->setCurrentPath(9);
    const QImage picture = window.Picture();
    EXPECT_EQ(Count(picture, kBlue, QRect(100, 40, 1, 20)), 2);
    EXPECT_EQ(Count(picture, kBlue, QRect(140, 100, 20, 1)), 2);
    EXPECT_EQ(Count(picture, kBlue, QRect(250, 40, 1, 20)), 2);
    // No line joins the paths.
    EXPECT_EQ(Count(picture, kBlue, QRect(170, 0, 1, 300)), 0);
}

TEST_F(CanvasPainting, pointIsAGreenSquareOfFivePixels) {
    DrawLevelLine();
    const QImage picture = window.Picture();
    // QPainter may paint a square whose edges are between pixels one column or row larger.
    for (const int x : {50, 250}) {
        EXPECT_EQ(Count(picture, kGreen, QRect(x - 2, 98, 5, 5)), 25);
        EXPECT_EQ(Count(picture, kGreen, QRect(x - 3, 97, 7, 7)),
                  Count(picture, kGreen, QRect(x - 20, 80, 40, 40)));
        EXPECT_LE(Count(picture, kGreen, QRect(x - 3, 97, 7, 7)), 36);
    }
}

TEST_F(CanvasPainting, pointsCoverLines) {
    DrawLevelLine();
    EXPECT_EQ(window.Picture().pixel(50, 100), kGreen);
    EXPECT_EQ(window.Picture().pixel(52, 100), kGreen);
}

TEST_F(CanvasPainting, pathOfOnePointIsADotWithoutALine) {
    mouse.Click({120, 80});
    const QImage picture = window.Picture();
    EXPECT_EQ(Count(picture, kGreen), 25);
    EXPECT_EQ(Count(picture, kBlue), 0);
    EXPECT_EQ(Count(picture, kRed), 0);
}

TEST_F(CanvasPainting, rubberBandIsARedLineFromTheLastPoint) {
    mouse.Press({50, 100});
    mouse.Move({250, 100});
    const QImage picture = window.Picture();
    EXPECT_EQ(Count(picture, kRed, QRect(150, 0, 1, 300)), 2);
    EXPECT_EQ(Count(picture, kRed, QRect(100, 99, 100, 2)), 200);
    mouse.Release({250, 250});
    window.canvas->setCurrentPath(9);
    EXPECT_EQ(Count(window.Picture(), kRed), 0);
}

TEST_F(CanvasPainting, rubberBandExtendsHalfItsWidthBeyondTheCursor) {
    mouse.Press({50, 100});
    mouse.Move({250, 100});
    const QImage picture = window.Picture();
    EXPECT_EQ(picture.pixel(250, 100), kRed);
    EXPECT_EQ(picture.pixel(251, 100), kGrey);
}

TEST_F(CanvasPainting, rubberBandCoversLinesButNotPoints) {
    mouse.Click({50, 100});
    mouse.Click({250, 100});
    window.canvas->setCurrentPath(9);
    mouse.Move({390, 290});
    mouse.Press({390, 290});
    mouse.Move({150, 100});
    const QImage picture = window.Picture();
    EXPECT_EQ(picture.pixel(100, 100), kBlue);
    EXPECT_EQ(picture.pixel(200, 100), kRed);
    EXPECT_EQ(picture.pixel(249, 100), kGreen);
}

TEST_F(CanvasPainting, pointsCoverTheSelectedSegment) {
    mouse.Draw({{50, 100}, {250, 100}});
    mouse.Move({390, 290});
    const QImage picture = window.Picture();
    EXPECT_EQ(picture.pixel(150, 100), kRed);
    EXPECT_EQ(picture.pixel(51, 100), kGreen);
    EXPECT_EQ(picture.pixel(249, 100), kGreen);
}

TEST_F(CanvasPainting, selectedSegmentIsRedOverItsBlueLine) {
    mouse.Draw({{50, 50}, {150, 50}, {150, 150}});
    window.canvas->setCurrentPath(0);
    window.canvas->setCurrentSegment(1);
    const QImage picture = window.Picture();
    EXPECT_EQ(Count(picture, kRed, QRect(140, 100, 20, 1)), 2);
    EXPECT_EQ(Count(picture, kBlue, QRect(140, 100, 20, 1)), 0);
    EXPECT_EQ(Count(picture, kBlue, QRect(100, 40, 1, 20)), 2);
}

TEST_F(CanvasPainting, doesNotHighlightARemovedSegment) {
    mouse.Draw({{50, 50}, {150, 50}, {150, 150}});
    window.canvas->setCurrentSegment(1);
    window.canvas->deleteLast();
    EXPECT_EQ(Count(window.Picture(), kRed), 0);
    window.canvas->setCurrentSegment(-1);
    EXPECT_EQ(Count(window.Picture(), kRed), 0);
    window.canvas->setCurrentPath(-1);
    EXPECT_EQ(Count(window.Picture(), kRed), 0);
}

TEST_F(CanvasPainting, pointUnderTheCursorIsAGreenSquareOfTenPixels) {
    DrawLevelLine();
    mouse.Move({250, 100});
    const QImage picture = window.Picture();
    EXPECT_EQ(Count(picture, kGreen, QRect(230, 80, 20, 40)) + Count(picture, kRed, QRect(230, 80, 20, 40)),
              10 * 5);
    const QRect grip = Extent(picture.copy(200, 0, 200, 300), kGreen);
    EXPECT_EQ(grip.size(), QSize(10, 10));
    EXPECT_TRUE(grip.contains(50, 100));
}

TEST_F(CanvasPainting, labelBaselineStartsAtThePoint) {
    DrawLevelLine();
    mouse.Move({250, 100});
    const QFontMetrics metrics(window.canvas->font());
    const QString text = QStringLiteral("250,100");
    QRect expected = metrics.tightBoundingRect(text).translated(250, 100);
    const QRect red = Extent(window.Picture(), kRed);
    EXPECT_NEAR(red.left(), expected.left(), 2);
    EXPECT_NEAR(red.right(), expected.right(), 2);
    EXPECT_NEAR(red.bottom(), expected.bottom(), 2);
    EXPECT_NEAR(red.top(), expected.top(), 2);
}

TEST_F(CanvasPainting, labelShowsBothCoordinatesInTheWidgetsFontOverTheGrip) {
    DrawLevelLine();
    QFont font = window.canvas->font();
    font.setPixelSize(29);
    window.canvas->setFont(font);
    QImage expected = window.Picture();
    QPainter painter(&expected);
    painter.fillRect(245, 95, 10, 10, Qt::green);
    painter.setFont(font);
    painter.setPen(Qt::red);
    painter.drawText(250, 100, QStringLiteral("250,100"));
    painter.end();
    mouse.Move({250, 100});
    EXPECT_EQ(window.Picture(), expected);
}

TEST_F(CanvasPainting, labelNearTheRightEdgeStartsFortyPixelsFurtherLeft) {
    mouse.Draw({{50, 100}, {359, 100}});
    window.canvas->setCurrentPath(9);
    mouse.Move({359, 100}); // 41 pixels from the edge
    const int fitting = Extent(window.Picture(), kRed).left();
    EXPECT_NEAR(fitting, 359, 4);
    window.canvas->clearAll();
    mouse.Move({20, 20});
    mouse.Draw({{50, 100}, {360, 100}});
    window.canvas->setCurrentPath(9);
    mouse.Move({360, 100}); // 40 pixels
    EXPECT_NEAR(Extent(window.Picture(), kRed).left(), 320, 4);
}

TEST_F(CanvasPainting, labelShowsWidgetPixelsAtAnyScale) {
    DrawLevelLine();
    window.Resize({800, 600});
    mouse.Move({500, 200});
    const QImage picture = window.Picture();
    QImage expected(picture.size(), QImage::Format_RGB32);
    expected.fill(kGreen);
    QPainter painter(&expected);
    painter.setFont(window.canvas->font());
    painter.setPen(QPen(QBrush(Qt::red), 5.0));
    painter.drawText(500, 200, QStringLiteral("500,200"));
    painter.end();
    for (int y = 195; y < 200; ++y)
        for (int x = 500; x < 505; ++x) // inside the grip, where the background is green in both
            ASSERT_EQ(picture.pixel(x, y), expected.pixel(x, y)) << x << ' ' << y;
}

TEST_F(CanvasPainting, bandsAreWhiteOutlinesWithGreenCorners) {
    window.shown = true;
    DrawLevelLine();
    // Ticks at 50 and 151, each with a band 100 across and 50 along.
    const QImage picture = window.Picture();
    EXPECT_EQ(Count(picture, kWhite, QRect(140, 40, 1, 20)), 2); // upper side of the second band
    EXPECT_EQ(Count(picture, kWhite, QRect(140, 140, 1, 20)), 2);
    EXPECT_EQ(Count(picture, kWhite, QRect(120, 70, 12, 1)), 2); // its left side, at 126
    EXPECT_EQ(picture.pixel(126, 50), kGreen);
    EXPECT_EQ(picture.pixel(176, 150), kGreen);
    EXPECT_EQ(Count(picture, kGreen, QRect(120, 40, 12, 20)), 25);
    EXPECT_EQ(Count(picture, kWhite, QRect(140, 60, 1, 35)), 0); // not filled
}

TEST_F(CanvasPainting, ticksAreNotPainted) {
    window.shown = true;
    DrawLevelLine();
    EXPECT_EQ(window.Picture().pixel(151, 70), kGrey);
}

TEST_F(CanvasPainting, bandsCoverPointsAndGripButNotCorners) {
    window.shown = true;
    DrawLevelLine(); // bands from 25 to 75 and from 126 to 176, between 50 and 150
    mouse.Draw({{126, 100}, {326, 100}, {326, 250}});
    window.canvas->setCurrentPath(9);
    mouse.Move({390, 290});
    const QImage picture = window.Picture();
    for (const int x : {25, 75, 126, 176})
        EXPECT_EQ(picture.pixel(x, 70), kWhite) << x;
    for (const int x : {101, 151, 202, 252}) // from 101 to 151 and from 202 to 252
        EXPECT_EQ(picture.pixel(x, 70), kWhite) << x;
    for (const int x : {276, 376}) // two pixels after the corner, from 77 to 127
        EXPECT_EQ(picture.pixel(x, 90), kWhite) << x;
    EXPECT_EQ(picture.pixel(126, 100), kWhite); // the second path's first point
    EXPECT_EQ(picture.pixel(126, 50), kGreen);  // a corner, on a side of the band of the second path
    EXPECT_EQ(picture.pixel(151, 50), kGreen);  // and vice versa
    mouse.Move({126, 100});
    const QImage hovered = window.Picture();
    EXPECT_EQ(hovered.pixel(122, 103), kGreen);
    EXPECT_EQ(hovered.pixel(126, 103), kWhite);
}

TEST_F(CanvasPainting, bandsCoverPaths) {
    window.shown = true;
    DrawLevelLine();
    EXPECT_EQ(window.Picture().pixel(126, 100), kWhite);
}

TEST_F(CanvasPainting, hiddenRulerWithCachedMarksIsNotPainted) {
    window.shown = true;
    DrawLevelLine();
    window.shown = false;
    ASSERT_FALSE(Paths().at(0).rulerMarks.empty());
    EXPECT_EQ(Count(window.Picture(), kWhite), 0);
}

TEST_F(CanvasPainting, clearedMarksAreErased) {
    window.shown = true;
    DrawLevelLine();
    window.canvas->clearRulerMarks();
    EXPECT_EQ(Count(window.Picture(), kWhite), 0);
    EXPECT_TRUE(Paths().at(0).rulerMarks.empty());
}

TEST_F(CanvasPainting, followsTheViewScale) {
    DrawLevelLine();
    window.Resize({800, 600});
    const QImage picture = window.Picture();
    EXPECT_EQ(Count(picture, kBlue, QRect(300, 0, 1, 600)), 2);
    EXPECT_EQ(picture.pixel(100, 200), kGreen);
    EXPECT_EQ(picture.pixel(500, 200), kGreen);
}

TEST_F(CanvasPainting, acceptsPointsFarOutsideTheCanvas) {
    mouse.Draw({{50, 100}, {250, 100}});
    window.Resize({16'000'000, 2});
    window.Resize({400, 300});
    EXPECT_EQ(window.Picture().pixel(150, 99), kRed);
}

} // namespace
