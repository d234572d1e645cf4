#include "CanvasHand.h"

#include <QApplication>
#include <QMouseEvent>

void CanvasHand::send(QEvent::Type type, Qt::MouseButton button) {
    QMaskWidget& target = storm.canvas();
    QMouseEvent event(type, cursor, target.mapToGlobal(cursor), button, storm.held, Qt::NoModifier);
    if (target.isEnabled()) // to a disabled window the system sends none
        QApplication::sendEvent(&target, &event);
}

void CanvasHand::move() {
    constexpr int kBeyond = 15; // the mouse is grabbed while a button is held
    const QSize size = storm.canvas().size();
    if (random.chance(3))
        cursor += QPoint(random.pick(13) - 6, random.pick(13) - 6);
    else
        cursor = QPoint(random.pick(size.width() + 2 * kBeyond) - kBeyond,
                        random.pick(size.height() + 2 * kBeyond) - kBeyond);
    send(QEvent::MouseMove, Qt::NoButton);
}

void CanvasHand::press() {
    storm.held |= Qt::LeftButton;
    send(QEvent::MouseButtonPress, Qt::LeftButton);
}

void CanvasHand::release() {
    storm.held &= ~Qt::LeftButton;
    send(QEvent::MouseButtonRelease, Qt::LeftButton);
}

void CanvasHand::doubleClick() {
    storm.held |= Qt::LeftButton;
    send(QEvent::MouseButtonDblClick, Qt::LeftButton);
}

void CanvasHand::otherButton() {
    const Qt::MouseButton button = random.chance(2) ? Qt::RightButton : Qt::MiddleButton;
    storm.held |= button;
    send(QEvent::MouseButtonPress, button);
    storm.held &= ~Qt::MouseButtons(button);
    send(QEvent::MouseButtonRelease, button);
}

void CanvasHand::goToPoint() {
    if (storm.paths().empty())
        return;
    const TrackPath& path = random.oneOf(storm.paths());
    const QPointF point = random.oneOf(path.points);
    cursor = QPoint(qRound(point.x() * storm.canvas().width()), qRound(point.y() * storm.canvas().height()));
    send(QEvent::MouseMove, Qt::NoButton);
}
