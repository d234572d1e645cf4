#pragma once

#include "CanvasFixture.h"
#include "WindowTest.h"

#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QWheelEvent>

#include <optional>

/// The real window with a track, the canvas in focus, and mouse, wheel and keys over it.
class OperatingTest : public WindowTest {
  protected:
    /// A map of 400 x 300 cells, which is shown 800 pixels wide at 100 %, with a closed path of three points.
    OperatingTest() : OperatingTest(SmallTrack(PathAcross(0, 3, 0.5, 100), 400, 300)) {}
    explicit OperatingTest(const independent::Track& shown) {
        WriteFile(folder.Path("a.trk"), independent::BinaryFile(shown));
        openTrack();
    }

    void openTrack() {
        openWindow();
        window->resize(900, 600);
        loadExternal(folder.Path("a.trk"));
        QApplication::setActiveWindow(window.get());
        canvas().setFocus();
        canvasMouse.emplace(&canvas());
        showPercent(100);
        scrollTo(0, 0);
        mouse().DoubleClick(at(0, 2));
        mouse().Move({400.0, 30.0}); // not over a point
    }

    [[nodiscard]] TrackDocument& document() { return canvas().document(); }
    Mouse& mouse() { return *canvasMouse; }
    QScrollArea& area() { return find<QScrollArea>("scrollArea"); }
    QSlider& slider() { return find<QSlider>("horizontalSlider_resizeImage"); }
    void showPercent(int percent) { slider().setValue(percent / 5); }
    void scrollTo(int x, int y) {
        area().horizontalScrollBar()->setValue(x);
        area().verticalScrollBar()->setValue(y);
    }

    QPointF point(std::size_t path, std::size_t index) { return paths().at(path).points.at(index); }
    /// A point in widget pixels.
    QPoint at(std::size_t path, std::size_t index) {
        return {qRound(point(path, index).x() * canvas().width()),
                qRound(point(path, index).y() * canvas().height())};
    }
    /// A normalised point from widget pixels.
    QPointF normalised(double x, double y) { return {x / canvas().width(), y / canvas().height()}; }

    void key(int code, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QApplication::setActiveWindow(window.get()); // a dialog may have been active
        QTest::keyClick(&canvas(), static_cast<Qt::Key>(code), modifiers);
    }
    void undo() { key(Qt::Key_Z, Qt::ControlModifier); }

    /// Turns the wheel with Ctrl at a place of the view.
    void turnWheel(const QPoint& inView, int eighths) {
        QWidget& target = canvas();
        const QPoint place = inView - target.pos();
        QWheelEvent event(place, area().viewport()->mapToGlobal(inView), QPoint(), QPoint(0, eighths),
                          Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&target, &event);
    }
    /// The normalised point at a place of the view.
    QPointF shownAt(const QPoint& inView) {
        const QPointF onCanvas = inView - canvas().pos();
        return {onCanvas.x() / canvas().width(), onCanvas.y() / canvas().height()};
    }

    std::optional<Mouse> canvasMouse;
};
