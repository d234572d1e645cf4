#include "window/ViewNavigation.h"

#include "canvas/qmaskwidget.h"
#include "window/KeyAction.h"
#include "window/ViewScale.h"
#include "window/mainwindow.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollArea>
#include <QWheelEvent>

#include <utility>

ViewNavigation::ViewNavigation(Context given) : context(std::move(given)) {
    const auto zoomBy = [this](int steps) { context.scale.zoomBy(steps, fixedPlace()); };
    addZoomKey("action_zoomIn", MainWindow::tr("Zoom In"),
               {QStringLiteral("Ctrl++"), QStringLiteral("Ctrl+=")}, [zoomBy] { zoomBy(1); });
    addZoomKey("action_zoomOut", MainWindow::tr("Zoom Out"), {QStringLiteral("Ctrl+-")},
               [zoomBy] { zoomBy(-1); });
    addZoomKey("action_zoomFit", MainWindow::tr("Fit"), {QStringLiteral("Ctrl+0")},
               [this] { context.scale.fit(); });
    addZoomKey("action_zoomFull", MainWindow::tr("Full Size"), {QStringLiteral("Ctrl+1")},
               [this] { context.scale.showFullSize(fixedPlace()); });
    for (QObject* const watched :
         std::initializer_list<QObject*>{&context.canvas, &context.area, context.area.viewport()})
        watched->installEventFilter(this);
}

void ViewNavigation::addZoomKey(const char* name, const QString& text, const QStringList& keys,
                                const std::function<void()>& zoom) {
    AddToWindow(context.window, {name, text, keys, [this, zoom] {
                                     if (mayAct())
                                         zoom();
                                 }});
}

QPoint ViewNavigation::fixedPlace() const {
    const auto cursor = context.canvas.cursorPlace();
    const QPoint place = context.canvas.pos() + cursor.value_or(QPointF()).toPoint();
    return cursor && context.area.viewport()->rect().contains(place) ? place : context.scale.centre();
}

bool ViewNavigation::mayAct() const {
    return context.canvas.document().hasImage() && !context.canvas.isGestureActive() && !isPanning() &&
           !context.isBusy();
}

bool ViewNavigation::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::Wheel: {
        const auto& wheel = static_cast<const QWheelEvent&>(*event);
        if ((wheel.modifiers() & Qt::ControlModifier) == 0)
            return false;
        turnWheel(wheel, context.area.viewport()->mapFromGlobal(wheel.globalPosition().toPoint()));
        return true;
    }
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseMove:
        return watched != &context.area && handleMouse(static_cast<const QMouseEvent&>(*event));
    case QEvent::KeyPress:
    case QEvent::KeyRelease: {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        if (key.key() != Qt::Key_Space)
            return false;
        if (!key.isAutoRepeat())
            holdSpace(event->type() == QEvent::KeyPress);
        return true;
    }
    case QEvent::FocusOut:
        holdSpace(false);
        return false;
    default:
        return false;
    }
}

void ViewNavigation::turnWheel(const QWheelEvent& event, const QPoint& place) {
    constexpr int kStep = QWheelEvent::DefaultDeltasPerStep;
    if (!mayAct())
        return;
    const int delta = event.angleDelta().y();
    if ((delta < 0) != (turned < 0))
        turned = 0; // in the other direction, the rest of a step does not count
    turned += delta;
    const int steps = turned / kStep;
    turned -= steps * kStep;
    context.scale.zoomBy(steps, place);
}

bool ViewNavigation::startsPan(const QMouseEvent& event) const {
    const bool pressed =
        event.type() == QEvent::MouseButtonPress || event.type() == QEvent::MouseButtonDblClick;
    const bool byButton =
        event.button() == Qt::MiddleButton || (event.button() == Qt::LeftButton && spaceHeld);
    return pressed && byButton && mayAct();
}

bool ViewNavigation::handleMouse(const QMouseEvent& event) {
    if (startsPan(event)) {
        panButton = event.button();
        panStart = event.globalPos();
        viewStart = context.canvas.pos();
        showCursor();
        return true;
    }
    if (!isPanning())
        return false;
    if (event.type() == QEvent::MouseMove && event.buttons() == Qt::NoButton) {
        endPan(); // the release went to another window
        return false;
    }
    if ((event.buttons() & panButton) != 0)
        context.scale.scrollTo(viewStart + event.globalPos() - panStart);
    // Another button that went down meanwhile belongs to the drag too: the canvas must not see its release.
    if (event.buttons() == Qt::NoButton)
        endPan();
    return true;
}

void ViewNavigation::holdSpace(bool held) {
    spaceHeld = held && context.canvas.document().hasImage();
    showCursor();
}

void ViewNavigation::endPan() {
    panButton = Qt::NoButton;
    showCursor();
}

void ViewNavigation::showCursor() {
    if (isPanning())
        context.canvas.setCursor(Qt::ClosedHandCursor);
    else if (spaceHeld)
        context.canvas.setCursor(Qt::OpenHandCursor);
    else
        context.canvas.unsetCursor();
}
