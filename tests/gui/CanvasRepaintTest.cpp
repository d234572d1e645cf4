#include "CanvasFixture.h"
#include "RandomOperator.h"
#include "TemporaryFolder.h"

#include <QPaintEvent>
#include <QPainter>
#include <QTest>

#include <algorithm>
#include <random>
#include <utility>

namespace {

QImage Noise(const QSize& size, unsigned seed) {
    std::mt19937 random(seed);
    QImage image(size, QImage::Format_RGB888);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, 0xff000000U | (random() & 0xffffffU));
    return image;
}

/// Collects the regions that a widget repaints.
class PaintedRegion : public QObject {
  public:
    explicit PaintedRegion(QWidget* widget) { widget->installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint)
            region += static_cast<QPaintEvent*>(event)->region();
        return false;
    }
    QRegion Take() {
        QApplication::processEvents();
        return std::exchange(region, {});
    }

  private:
    QRegion region;
};

/// The picture of a plain label with the same pixmap and size.
QImage PlainLabel(const QPixmap& pixmap, const QSize& size) {
    QLabel label;
    label.setScaledContents(true);
    label.setPixmap(pixmap);
    label.resize(size);
    return label.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

/// The picture of `part` of a widget when only that is painted.
QImage Part(QWidget* widget, const QRect& part) {
    return widget->grab(part).toImage().convertToFormat(QImage::Format_RGB32);
}

using CanvasRepaint = CanvasTest;

TEST_F(CanvasRepaint, repaintChangesOnlyItsRegion) {
    window.resize(600, 500); // larger than any canvas of the random operator
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    window.canvas->setPixmap(QPixmap::fromImage(Noise({400, 300}, 1)));
    PaintedRegion painted(window.canvas);
    painted.Take();
    QImage screen = window.Picture();
    painted.Take();
    RandomOperator robot(window, 5);
    int partial = 0;
    for (int step = 0; step < 600; ++step) {
        robot.Act();
        if (Paths().size() > 6)
            window.canvas->clearAll();
        const QRegion region = painted.Take();
        const QImage full = window.Picture();
        painted.Take();
        if (screen.size() != full.size())
            screen = QImage(full.size(), full.format());
        for (const QRect& rect : region.intersected(window.canvas->rect())) {
            QPainter painter(&screen);
            painter.drawImage(rect.topLeft(), full, rect);
        }
        ASSERT_EQ(screen, full) << step;
        partial += region.boundingRect().size() != full.size() ? 1 : 0;
    }
    EXPECT_GT(partial, 200); // or the test proves nothing: everything is repainted each time
}

TEST_F(CanvasRepaint, partialRepaintEqualsFullRepaint) {
    window.canvas->setPixmap(QPixmap::fromImage(Noise({400, 300}, 2)));
    window.shown = true;
    RandomOperator robot(window, 6);
    std::mt19937 random(7);
    for (int step = 0; step < 200; ++step) {
        robot.Act();
        if (Paths().size() > 6)
            window.canvas->clearAll();
        const QImage full = window.Picture();
        const QRect part(int(random() % unsigned(full.width())), int(random() % unsigned(full.height())),
                         int(1 + random() % 80), int(1 + random() % 80));
        const QRect inside = part.intersected(full.rect());
        ASSERT_EQ(Part(window.canvas, inside), full.copy(inside)) << step;
    }
}

TEST_F(CanvasRepaint, selectingAPathOrSegmentRepaints) {
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    mouse.Draw({{50, 100}, {150, 100}, {250, 100}});
    mouse.Move({250, 250});
    mouse.Draw({{50, 200}, {150, 200}});
    PaintedRegion painted(window.canvas);
    painted.Take();
    window.canvas->setCurrentSegment(1);
    EXPECT_TRUE(painted.Take().contains(QRect(60, 99, 180, 2)));
    window.canvas->setCurrentSegment(0);
    painted.Take();
    window.canvas->setCurrentPath(1);
    const QRegion region = painted.Take();
    EXPECT_TRUE(region.contains(QRect(60, 99, 80, 2)));
    EXPECT_TRUE(region.contains(QRect(60, 199, 80, 2)));
}

TEST_F(CanvasRepaint, clearingAllRepaintsAndResettingForALoadDoesNot) {
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    mouse.Draw({{50, 100}, {150, 100}});
    PaintedRegion painted(window.canvas);
    painted.Take();
    window.canvas->resetPaths();
    EXPECT_TRUE(painted.Take().isEmpty());
    window.canvas->clearAll();
    EXPECT_TRUE(painted.Take().contains(window.canvas->rect()));
}

TEST_F(CanvasRepaint, loadingPathsRepaints) {
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    const TemporaryFolder folder;
    WriteFile("track.trk",
              "Segment\nheader\n0,0,0,0,0.25,0.5,1,100,50,100\n0,1,0,0,0.5,0.5,1,100,50,100\nEnd\n");
    PaintedRegion painted(window.canvas);
    painted.Take();
    ASSERT_EQ(window.canvas->loadPaths(QStringLiteral("track.trk")), 0);
    EXPECT_TRUE(painted.Take().contains(QRect(100, 149, 100, 2)));
}

TEST_F(CanvasRepaint, disabledCanvasPaintsTheImageLikeADisabledLabel) {
    const QPixmap pixmap = QPixmap::fromImage(Noise({400, 300}, 12));
    window.canvas->setPixmap(pixmap);
    window.canvas->setEnabled(false);
    QLabel label;
    label.setScaledContents(true);
    label.setPixmap(pixmap);
    label.resize(400, 300);
    label.setEnabled(false);
    EXPECT_EQ(window.Picture(), label.grab().toImage().convertToFormat(QImage::Format_RGB32));
    EXPECT_NE(window.Picture(), PlainLabel(pixmap, {400, 300}));
}

TEST_F(CanvasRepaint, showingARulerWithComputedMarksPaintsIt) {
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    mouse.Draw({{50, 100}, {250, 100}});
    window.refreshRuler(); // as before a save, with the ruler hidden
    QApplication::processEvents();
    PaintedRegion painted(window.canvas);
    painted.Take();
    window.shown = true;
    window.refreshRuler();
    EXPECT_TRUE(painted.Take().contains(QPoint(126, 100)));
}

TEST_F(CanvasRepaint, dragWithTheRulerShownRepaintsOnlyNearby) {
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    window.shown = true;
    mouse.Draw({{50, 50}, {60, 60}});
    mouse.Move({380, 280});
    mouse.Draw({{340, 240}, {350, 250}});
    window.canvas->setParameterEverywhere(SegmentParameter::Length, 10);
    window.canvas->setParameterEverywhere(SegmentParameter::Width, 10);
    window.refreshRuler();
    mouse.Move({350, 250});
    mouse.Press({350, 250});
    PaintedRegion painted(window.canvas);
    painted.Take();
    mouse.Move({352, 252});
    const QRegion region = painted.Take();
    EXPECT_FALSE(region.isEmpty());
    EXPECT_FALSE(region.intersects(QRect(0, 0, 200, 150)));
}

TEST_F(CanvasRepaint, pointDraggedFarIsPaintedAtItsNewPosition) {
    window.ShowImage({400, 3000}); // painted in several strips, each of which finds what overlaps it
    mouse.Draw({{100, 100}, {200, 120}});
    (void)window.Picture();
    mouse.Move(At(0, 1));
    mouse.Press(At(0, 1));
    mouse.Move({300, 2900});
    mouse.Release({300, 2900});
    mouse.Move({20, 1500}); // the grip is removed, the dot stays
    EXPECT_EQ(Part(window.canvas, {290, 2890, 20, 20}).pixelColor(10, 10), QColor(0, 255, 0));
}

TEST_F(CanvasRepaint, replacedPathsArePaintedAtTheirPositions) {
    const TemporaryFolder folder;
    WriteFile("other.trk",
              "Segment\nheader\n0,0,0,0,0.25,0.9,1,100,50,100\n0,1,0,0,0.5,0.95,1,100,50,100\nEnd\n");
    window.ShowImage({400, 3000});
    mouse.Draw({{100, 100}, {200, 120}});
    (void)window.Picture();
    window.canvas->resetPaths();
    ASSERT_EQ(window.canvas->loadPaths(QStringLiteral("other.trk")), 0);
    EXPECT_EQ(Part(window.canvas, {190, 2840, 20, 20}).pixelColor(10, 10), QColor(0, 255, 0));
}

TEST_F(CanvasRepaint, imageEqualsAPlainLabelsAtEveryViewScale) {
    const QPixmap pixmap = QPixmap::fromImage(Noise({203, 149}, 3));
    window.canvas->setPixmap(pixmap);
    for (int step = 1; step <= 80; ++step) {
        const QSize size = (QSizeF(pixmap.size()) * (step * 0.05)).toSize();
        window.Resize(size);
        ASSERT_EQ(window.Picture(), PlainLabel(pixmap, size)) << step * 5 << " %";
    }
}

TEST_F(CanvasRepaint, imageEqualsAPlainLabelsWithOneAxisStretched) {
    const QPixmap pixmap = QPixmap::fromImage(Noise({203, 149}, 4));
    window.canvas->setPixmap(pixmap);
    for (const QSize size : {QSize(300, 100), QSize(120, 380)}) {
        window.Resize(size);
        ASSERT_EQ(window.Picture(), PlainLabel(pixmap, size));
    }
}

TEST_F(CanvasRepaint, largeMapAtASmallScaleIsRefinedToAPlainLabels) {
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    const QPixmap pixmap = QPixmap::fromImage(Noise({5000, 5000}, 10));
    window.canvas->setPixmap(pixmap);
    window.Resize({300, 250});
    PaintedRegion painted(window.canvas);
    window.canvas->repaint();
    ASSERT_TRUE(window.canvas->isRefining());
    const QImage final = PlainLabel(pixmap, {300, 250});
    painted.Take();
    QTRY_VERIFY(!window.canvas->isRefining());
    EXPECT_TRUE(painted.Take().boundingRect().contains(QRect(0, 240, 300, 10)));
    EXPECT_EQ(window.Picture(), final);
    EXPECT_FALSE(window.canvas->isRefining()); // the averaged part is kept
}

TEST_F(CanvasRepaint, visiblePartOfALargeMapIsAveragedOnce) {
    const QSize screen(2600, 1500);
    window.resize(screen);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    window.canvas->setPixmap(QPixmap::fromImage(Noise({4000, 3000}, 11)));
    window.Resize(screen);
    window.canvas->repaint();
    ASSERT_TRUE(window.canvas->isRefining());
    QTRY_VERIFY(!window.canvas->isRefining());
    window.canvas->repaint();
    EXPECT_FALSE(window.canvas->isRefining());
}

TEST_F(CanvasRepaint, newImageIsShownImmediately) {
    ASSERT_EQ(window.Picture().pixel(100, 100), qRgb(90, 90, 90));
    window.ShowImage({400, 300}, QColor(200, 10, 20));
    EXPECT_EQ(window.Picture().pixel(100, 100), qRgb(200, 10, 20));
}

TEST_F(CanvasRepaint, scrollingShowsTheSamePixels) {
    const QPixmap pixmap = QPixmap::fromImage(Noise({203, 149}, 5));
    window.canvas->setPixmap(pixmap);
    QScrollArea area;
    area.setWidget(window.canvas);
    window.canvas->resize(800, 600);
    area.resize(200, 150);
    area.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&area));
    const QImage full = PlainLabel(pixmap, {800, 600});
    std::mt19937 random(8);
    for (int step = 0; step < 60; ++step) {
        window.canvas->move(-int(random() % 600), -int(random() % 450));
        QApplication::processEvents();
        const QRect seen = window.canvas->visibleRegion().boundingRect();
        ASSERT_EQ(Part(window.canvas, seen), full.copy(seen)) << step;
    }
    area.takeWidget()->setParent(window.central);
}

TEST_F(CanvasRepaint, deviceRatioOfTwoGivesTheFullResolution) {
    const QPixmap pixmap = QPixmap::fromImage(Noise({400, 300}, 9));
    window.canvas->setPixmap(pixmap);
    mouse.Draw({{50, 100}, {250, 100}});
    window.canvas->setCurrentPath(9);
    mouse.Move({390, 290});
    QImage picture(800, 600, QImage::Format_RGB32);
    picture.setDevicePixelRatio(2.0);
    window.canvas->render(&picture);
    picture.setDevicePixelRatio(1.0);
    EXPECT_EQ(picture.copy(400, 400, 300, 150), PlainLabel(pixmap, {800, 600}).copy(400, 400, 300, 150));
    EXPECT_EQ(picture.pixel(300, 198), qRgb(0, 0, 255)); // a line of 2 is 4 device pixels wide
    EXPECT_EQ(picture.pixel(300, 201), qRgb(0, 0, 255));
    EXPECT_NE(picture.pixel(300, 197), qRgb(0, 0, 255));
    EXPECT_NE(picture.pixel(300, 202), qRgb(0, 0, 255));
    EXPECT_EQ(picture.pixel(100, 200), qRgb(0, 255, 0));
    EXPECT_EQ(picture.pixel(95, 195), qRgb(0, 255, 0)); // a dot of 5 is 10 wide
    EXPECT_EQ(picture.pixel(104, 204), qRgb(0, 255, 0));
}

TEST_F(CanvasRepaint, paintsACanvasOfAnySizeInPieces) {
    window.Resize({3000, 2500});
    mouse.Draw({{50, 2400}, {2900, 2400}});
    const QImage picture = window.Picture();
    EXPECT_EQ(picture.size(), QSize(3000, 2500));
    EXPECT_EQ(picture.pixel(1000, 2400), qRgb(255, 0, 0));
    EXPECT_EQ(picture.pixel(1000, 100), qRgb(90, 90, 90));
    EXPECT_EQ(picture.pixel(2999, 2499), qRgb(90, 90, 90));
}

} // namespace
