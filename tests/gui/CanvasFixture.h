#pragma once

#include "canvas/qmaskwidget.h"

#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QScrollArea>
#include <QVBoxLayout>
#include <QWidget>

#include <gtest/gtest.h>

#include <vector>

/// A window with a canvas in it, which asks for the ruler as the program's window does.
class CanvasWindow : public QWidget, public RulerOwner {
  public:
    explicit CanvasWindow(const QSize& image = {400, 300}) : central(new QWidget(this)) {
        canvas = new QMaskWidget(central);
        ShowImage(image);
        resize(image);
        show();
    }

    void ShowImage(const QSize& size, const QColor& colour = QColor(90, 90, 90)) {
        imageSize = size;
        QPixmap pixmap(size);
        pixmap.fill(colour);
        canvas->setPixmap(pixmap);
        Resize(size);
    }

    void Resize(const QSize& size) {
        central->resize(size);
        canvas->resize(size);
    }

    [[nodiscard]] bool rulerShown() const override { return shown; }
    void refreshRuler() override {
        ++refreshes;
        canvas->computeRulerMarks(imageSize.width(), imageSize.height());
    }

    /// The complete canvas as it paints itself.
    [[nodiscard]] QImage Picture() const {
        return canvas->grab().toImage().convertToFormat(QImage::Format_RGB32);
    }

    bool shown = false;
    int refreshes = 0;
    QSize imageSize;
    QWidget* central;
    QMaskWidget* canvas = nullptr;
};

/// A mouse over a widget: real events, with the buttons that are down.
class Mouse {
  public:
    explicit Mouse(QWidget* widget) : widget(widget) {}

    void Press(const QPointF& at, Qt::MouseButton button = Qt::LeftButton) {
        down |= button;
        Send(QEvent::MouseButtonPress, at, button);
    }
    void Release(const QPointF& at, Qt::MouseButton button = Qt::LeftButton) {
        down &= ~Qt::MouseButtons(button);
        Send(QEvent::MouseButtonRelease, at, button);
    }
    void Move(const QPointF& at) { Send(QEvent::MouseMove, at, Qt::NoButton); }
    void Click(const QPointF& at, Qt::MouseButton button = Qt::LeftButton) {
        Press(at, button);
        Release(at, button);
    }
    void CtrlClick(const QPointF& at) {
        modifiers = Qt::ControlModifier;
        Click(at);
        modifiers = Qt::NoModifier;
    }
    /// All events that a window system sends for a double click.
    void DoubleClick(const QPointF& at, Qt::MouseButton button = Qt::LeftButton) {
        Click(at, button);
        down |= button;
        Send(QEvent::MouseButtonDblClick, at, button);
        Release(at, button);
    }
    /// A path from click to click, closed by a double click on its last point.
    void Draw(const std::vector<QPointF>& points) {
        for (std::size_t i = 0; i + 1 < points.size(); ++i)
            Click(points[i]);
        DoubleClick(points.back());
    }

  private:
    void Send(QEvent::Type type, const QPointF& at, Qt::MouseButton button) {
        QMouseEvent event(type, at, widget->mapToGlobal(at.toPoint()), button, down, modifiers);
        QApplication::sendEvent(widget, &event);
    }

    QWidget* widget;
    Qt::MouseButtons down = Qt::NoButton;
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;
};

/// A canvas of 400 x 300 pixels over a grey image of the same size.
class CanvasTest : public ::testing::Test {
  protected:
    [[nodiscard]] const EditingState& State() const { return window.canvas->editingState(); }
    [[nodiscard]] TrackDocument& Document() const { return window.canvas->document(); }
    [[nodiscard]] const std::vector<TrackPath>& Paths() const { return window.canvas->paths(); }
    /// A stored point in widget pixels.
    [[nodiscard]] QPointF At(std::size_t path, std::size_t point) const {
        const QPointF stored = Paths().at(path).points.at(point);
        return {stored.x() * window.canvas->width(), stored.y() * window.canvas->height()};
    }

    CanvasWindow window;
    Mouse mouse{window.canvas};
};
