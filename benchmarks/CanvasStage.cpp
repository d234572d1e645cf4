#include "CanvasStage.h"

#include "canvas/qmaskwidget.h"

#include <QMouseEvent>

#include <cstdlib>
#include <random>

namespace {

constexpr QSize kView(1200, 800);

QApplication& Application() {
    static int count = 1;
    static char name[] = "corvane-bench";
    static char* names[] = {name, nullptr};
    static QApplication application(count, names);
    return application;
}

} // namespace

/// Owns the ruler, as the program's window does; the canvas finds it as its parent's parent.
class CanvasStage::Window : public QWidget, public RulerOwner {
  public:
    [[nodiscard]] bool rulerShown() const override { return shown; }
    void refreshRuler() override {
        if (canvas != nullptr)
            canvas->computeRulerMarks(image.width(), image.height());
    }

    bool shown = false;
    QSize image;
    QMaskWidget* canvas = nullptr;
};

CanvasStage::CanvasStage(Kind kind, const QImage& image) : imageSize(image.size()) {
    Application();
    window = std::make_unique<Window>();
    window->image = imageSize;
    area = new QScrollArea(window.get());
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    if (kind == Kind::Canvas) {
        window->canvas = new QMaskWidget(area);
        widget = window->canvas;
    } else {
        widget = new QLabel(area);
        widget->setScaledContents(true);
    }
    area->setWidget(widget);
    area->resize(kView);
    window->resize(kView);
    widget->setPixmap(QPixmap::fromImage(image));
    window->show();
    QApplication::processEvents();
}

CanvasStage::~CanvasStage() = default;

QMaskWidget& CanvasStage::Canvas() const {
    return *window->canvas;
}

void CanvasStage::ShowRuler(bool shown) {
    window->shown = shown;
    window->refreshRuler();
    QApplication::processEvents();
}

void CanvasStage::Zoom(int percent) {
    widget->resize(imageSize.width() * percent / 100, imageSize.height() * percent / 100);
    QApplication::processEvents();
}

void CanvasStage::MoveMouse(const QPointF& place, Qt::MouseButtons buttons) const {
    QMouseEvent event(QEvent::MouseMove, place, widget->mapToGlobal(place.toPoint()), Qt::NoButton, buttons,
                      Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
    QApplication::processEvents();
}

void CanvasStage::PressMouse(const QPointF& place) const {
    QMouseEvent event(QEvent::MouseButtonPress, place, widget->mapToGlobal(place.toPoint()), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
    QApplication::processEvents();
}

QImage NoiseImage(int width, int height) {
    std::mt19937 random(3);
    QImage image(width, height, QImage::Format_RGB888);
    for (int row = 0; row < height; ++row) {
        uchar* const line = image.scanLine(row);
        for (int byte = 0; byte < width * 3; ++byte)
            line[byte] = static_cast<uchar>(random());
    }
    return image;
}

QImage SurfaceImage(int width, int height) {
    QImage image(width, height, QImage::Format_RGB888);
    for (int row = 0; row < height; ++row) {
        uchar* const line = image.scanLine(row);
        for (int byte = 0; byte < width * 3; ++byte)
            line[byte] = static_cast<uchar>(byte * 5 + row * 3);
    }
    return image;
}
