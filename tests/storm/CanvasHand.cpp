#include "CanvasHand.h"

#include <QApplication>
#include <QKeySequence>
#include <QMouseEvent>

void CanvasHand::send(QEvent::Type type, Qt::MouseButton button, Qt::KeyboardModifiers modifiers) {
    QMaskWidget& target = storm.canvas();
    QMouseEvent event(type, cursor, target.mapToGlobal(cursor), button, storm.held, modifiers);
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
    if (random.chance(2))
        move();
    storm.held &= ~Qt::MouseButtons(button);
    send(QEvent::MouseButtonRelease, button);
}

bool CanvasHand::focusCanvas() {
    if (!storm.window->isEnabled())
        return false;
    QApplication::setActiveWindow(storm.window.get());
    storm.canvas().setFocus();
    return true;
}

void CanvasHand::pressKey() {
    if (!focusCanvas())
        return;
    const TrackDocument& document = storm.canvas().document();
    const int steps = document.undoDepth();
    const bool drawing = storm.canvas().isGestureActive();
    const auto key = random.oneOf<Qt::Key>({Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down,
                                            Qt::Key_Delete, Qt::Key_Insert, Qt::Key_Backspace, Qt::Key_Return,
                                            Qt::Key_Escape, Qt::Key_N, Qt::Key_P, Qt::Key_A, Qt::Key_C});
    const auto modifiers = random.oneOf<Qt::KeyboardModifiers>(
        {Qt::NoModifier, Qt::NoModifier, Qt::ShiftModifier, Qt::AltModifier,
         key == Qt::Key_C ? Qt::ControlModifier : Qt::NoModifier});
    storm.note(QKeySequence(key).toString().toStdString());
    QTest::keyClick(&storm.canvas(), key, modifiers);
    // Where the first point lies in the margin, a click and so a key adds a second one.
    const int most = key == Qt::Key_A ? 2 : 1;
    EXPECT_LE(document.undoDepth(), steps + most);
    // Escape takes a drag back by one more step where a parameter was typed in the middle of it.
    if (drawing && key != Qt::Key_Escape) {
        EXPECT_LE(document.undoDepth(), steps) << "while the button is down";
    }
    storm.count(document.undoDepth() > steps ? "  steps by key" : "  no step by key");
}

void CanvasHand::pressSpace() {
    if (!focusCanvas())
        return;
    spaceHeld = !spaceHeld;
    if (spaceHeld)
        QTest::keyPress(&storm.canvas(), Qt::Key_Space);
    else
        QTest::keyRelease(&storm.canvas(), Qt::Key_Space);
}

void CanvasHand::clickWithCtrl() {
    if (random.chance(2))
        goToSegment();
    storm.held |= Qt::LeftButton;
    send(QEvent::MouseButtonPress, Qt::LeftButton, Qt::ControlModifier);
    storm.held &= ~Qt::LeftButton;
    send(QEvent::MouseButtonRelease, Qt::LeftButton, Qt::ControlModifier);
}

void CanvasHand::goToSegment() {
    if (storm.paths().empty())
        return;
    const std::vector<QPointF>& points = random.oneOf(storm.paths()).points;
    const QPointF middle = (points.front() + points[points.size() > 1 ? 1 : 0]) / 2;
    cursor =
        QPoint(qRound(middle.x() * storm.canvas().width()), qRound(middle.y() * storm.canvas().height()));
    send(QEvent::MouseMove, Qt::NoButton);
}

void CanvasHand::goToPoint() {
    if (storm.paths().empty())
        return;
    const TrackPath& path = random.oneOf(storm.paths());
    const QPointF point = random.oneOf(path.points);
    cursor = QPoint(qRound(point.x() * storm.canvas().width()), qRound(point.y() * storm.canvas().height()));
    send(QEvent::MouseMove, Qt::NoButton);
}
