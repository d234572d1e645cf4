#include "CanvasFixture.h"

#include <QScreen>
#include <QTest>
#include <QWindow>

#include <random>

namespace {

/// A map that takes many paints to be averaged: 25 million pixels, of which one paint averages 4.
QPixmap LargeNoise() {
    std::mt19937 random(11);
    QImage image(5000, 5000, QImage::Format_RGB32);
    for (int row = 0; row < image.height(); ++row) {
        auto* const line = reinterpret_cast<QRgb*>(image.scanLine(row));
        for (int column = 0; column < image.width(); ++column)
            line[column] = 0xff000000U | (random() & 0xffffffU);
    }
    return QPixmap::fromImage(image);
}

/// A large map at a small scale, on screens of one and of two device pixels a pixel.
class CanvasRefining : public CanvasTest {
  protected:
    CanvasRefining() {
        window.canvas->setPixmap(map);
        window.Resize({300, 250});
        window.resize(600, 500); // the platform returns one device pixel for each pixel of the window
    }

    void SetUp() override { ASSERT_TRUE(QTest::qWaitForWindowExposed(&window)); }

    /// The canvas as painted on the screen so far.
    [[nodiscard]] QImage Screen() const {
        const QRect place(QPoint(0, 0), window.canvas->size());
        const QPixmap shown =
            window.screen()->grabWindow(window.winId(), 0, 0, place.width(), place.height());
        return shown.toImage().convertToFormat(QImage::Format_RGB32);
    }
    [[nodiscard]] QColor PixelAt(const QPoint& place) const {
        return Screen().pixelColor(place * window.devicePixelRatio());
    }

    void AwaitTheFineMap() {
        ASSERT_TRUE(QTest::qWaitFor([this] { return !window.canvas->isRefining(); }));
    }

    /// The picture of an undisturbed canvas with the map and these paths.
    [[nodiscard]] static QImage Undisturbed(const QPixmap& map, const std::vector<QPointF>& points) {
        CanvasWindow other;
        other.ShowImage({300, 250});
        Mouse otherMouse(other.canvas);
        otherMouse.Draw(points);
        other.canvas->setPixmap(map);
        otherMouse.Move({20, 20});
        (void)other.Picture();
        EXPECT_TRUE(QTest::qWaitFor([&other] { return !other.canvas->isRefining(); }));
        return other.Picture();
    }

    /// The map as Qt's own label scales it.
    [[nodiscard]] QImage FineMap() const {
        QLabel label;
        label.setScaledContents(true);
        label.setPixmap(map);
        label.resize(300, 250);
        return label.grab().toImage().convertToFormat(QImage::Format_RGB32);
    }

    const QPixmap map = LargeNoise();
};

TEST_F(CanvasRefining, refinesTheCompleteMapInSteps) {
    const QImage fine = FineMap();
    window.canvas->repaint();
    ASSERT_TRUE(window.canvas->isRefining());
    EXPECT_NE(Screen(), fine); // or the test proves nothing: the first paint averaged everything
    AwaitTheFineMap();
    EXPECT_EQ(Screen().size(), fine.size());
    EXPECT_EQ(Screen(), fine);
}

TEST_F(CanvasRefining, grabIsFineImmediatelyAndTheScreenFollows) {
    const QImage fine = FineMap();
    window.canvas->repaint();
    ASSERT_TRUE(window.canvas->isRefining());
    EXPECT_EQ(window.canvas->grab().toImage().convertToFormat(QImage::Format_RGB32), fine);
    EXPECT_TRUE(window.canvas->isRefining());
    EXPECT_NE(Screen(), fine);
    AwaitTheFineMap();
    EXPECT_EQ(Screen(), fine);
}

TEST_F(CanvasRefining, dragDuringRefiningIsShownAndEndsWithTheSamePicture) {
    mouse.Draw({{60, 60}, {150, 60}, {150, 200}});
    window.canvas->repaint();
    mouse.Move({150, 60});
    mouse.Press({150, 60});
    int meanwhile = 0;
    const std::vector<QPoint> steps = {{170, 70}, {190, 90}, {210, 120}, {240, 150}};
    for (const QPoint& step : steps) {
        mouse.Move(step);
        QApplication::processEvents();
        meanwhile += window.canvas->isRefining() ? 1 : 0;
        ASSERT_EQ(PixelAt(step), QColor(0, 255, 0)) << step.x();
        ASSERT_EQ(PixelAt((step + QPoint(60, 60)) / 2), QColor(255, 0, 0)) << step.x();
    }
    EXPECT_GT(meanwhile, 1); // or the test proves nothing: the first paint was fine
    mouse.Release(steps.back());
    mouse.Move({20, 20});
    AwaitTheFineMap();
    QApplication::processEvents();
    EXPECT_EQ(Screen(), Undisturbed(map, {{60, 60}, steps.back(), {150, 200}}));
}

TEST_F(CanvasRefining, dragOverTheFineMapKeepsItFine) {
    mouse.Draw({{60, 60}, {150, 60}, {150, 200}});
    window.canvas->repaint();
    AwaitTheFineMap();
    mouse.Move({150, 60});
    mouse.Press({150, 60});
    for (int step = 0; step < 40; ++step) {
        mouse.Move(QPointF(150 + 2 * step, 60 + 3 * step));
        QApplication::processEvents();
        ASSERT_FALSE(window.canvas->isRefining()) << step;
    }
    mouse.Release({228, 177});
    mouse.Move({20, 20});
    QApplication::processEvents();
    EXPECT_EQ(Screen(), Undisturbed(map, {{60, 60}, {228, 177}, {150, 200}}));
}

TEST_F(CanvasRefining, pausesWhileHiddenAndResumesWhenShown) {
    window.canvas->repaint();
    ASSERT_TRUE(window.canvas->isRefining());
    window.canvas->hide();
    AwaitTheFineMap();
    window.canvas->show();
    ASSERT_TRUE(QTest::qWaitFor([this] { return window.canvas->isRefining(); }));
    AwaitTheFineMap();
    EXPECT_EQ(Screen(), window.Picture());
    EXPECT_FALSE(window.canvas->isRefining());
}

TEST_F(CanvasRefining, stopsWhenTheImageIsRemoved) {
    window.canvas->repaint();
    ASSERT_TRUE(window.canvas->isRefining());
    window.canvas->clear();
    window.canvas->repaint();
    EXPECT_FALSE(window.canvas->isRefining());
}

} // namespace
