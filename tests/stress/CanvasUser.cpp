#include "CanvasUser.h"

#include <QApplication>
#include <QKeySequence>
#include <QMouseEvent>

void CanvasUser::send(QEvent::Type type, Qt::MouseButton button, Qt::KeyboardModifiers modifiers) {
    QMaskWidget& target = stress.canvas();
    QMouseEvent event(type, cursor, target.mapToGlobal(cursor), button, stress.held, modifiers);
    if (target.isEnabled()) // the system sends no events to a disabled window
        QApplication::sendEvent(&target, &event);
}

void CanvasUser::move() {
    constexpr int kBeyond = 15; // the mouse is grabbed while a button is held
    const QSize size = stress.canvas().size();
    if (random.chance(3))
        cursor += QPoint(random.pick(13) - 6, random.pick(13) - 6);
    else
        cursor = QPoint(random.pick(size.width() + 2 * kBeyond) - kBeyond,
                        random.pick(size.height() + 2 * kBeyond) - kBeyond);
    send(QEvent::MouseMove, Qt::NoButton);
}

void CanvasUser::press() {
    stress.held |= Qt::LeftButton;
    send(QEvent::MouseButtonPress, Qt::LeftButton);
}

void CanvasUser::release() {
    stress.held &= ~Qt::LeftButton;
    send(QEvent::MouseButtonRelease, Qt::LeftButton);
}

void CanvasUser::doubleClick() {
    stress.held |= Qt::LeftButton;
    send(QEvent::MouseButtonDblClick, Qt::LeftButton);
}

void CanvasUser::otherButton() {
    const Qt::MouseButton button = random.chance(2) ? Qt::RightButton : Qt::MiddleButton;
    stress.held |= button;
    send(QEvent::MouseButtonPress, button);
    if (random.chance(2))
        move();
    stress.held &= ~Qt::MouseButtons(button);
    send(QEvent::MouseButtonRelease, button);
}

bool CanvasUser::focusCanvas() {
    if (!stress.window->isEnabled())
        return false;
    QApplication::setActiveWindow(stress.window.get());
    stress.canvas().setFocus();
    return true;
}

void CanvasUser::pressKey() {
    if (!focusCanvas())
        return;
    const TrackDocument& document = stress.canvas().document();
    const int steps = document.undoDepth();
    const bool drawing = stress.canvas().isGestureActive();
    const auto key = random.oneOf<Qt::Key>({Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down,
                                            Qt::Key_Delete, Qt::Key_Insert, Qt::Key_Backspace, Qt::Key_Return,
                                            Qt::Key_Escape, Qt::Key_N, Qt::Key_P, Qt::Key_A, Qt::Key_C});
    const auto modifiers = random.oneOf<Qt::KeyboardModifiers>(
        {Qt::NoModifier, Qt::NoModifier, Qt::ShiftModifier, Qt::AltModifier,
         key == Qt::Key_C ? Qt::ControlModifier : Qt::NoModifier});
    stress.note(QKeySequence(key).toString().toStdString());
    QTest::keyClick(&stress.canvas(), key, modifiers);
    // If the first point is in the margin, a click or key adds a second one.
    const int most = key == Qt::Key_A ? 2 : 1;
    EXPECT_LE(document.undoDepth(), steps + most);
    // Escape undoes a drag with one more step if a parameter was typed during it.
    if (drawing && key != Qt::Key_Escape) {
        EXPECT_LE(document.undoDepth(), steps) << "while the button is down";
    }
    stress.count(document.undoDepth() > steps ? "  steps by key" : "  no step by key");
}

void CanvasUser::pressSpace() {
    if (!focusCanvas())
        return;
    spaceHeld = !spaceHeld;
    if (spaceHeld)
        QTest::keyPress(&stress.canvas(), Qt::Key_Space);
    else
        QTest::keyRelease(&stress.canvas(), Qt::Key_Space);
}

void CanvasUser::clickWithCtrl() {
    if (random.chance(2))
        goToSegment();
    stress.held |= Qt::LeftButton;
    send(QEvent::MouseButtonPress, Qt::LeftButton, Qt::ControlModifier);
    stress.held &= ~Qt::LeftButton;
    send(QEvent::MouseButtonRelease, Qt::LeftButton, Qt::ControlModifier);
}

void CanvasUser::goToSegment() {
    if (stress.paths().empty())
        return;
    const std::vector<QPointF>& points = random.oneOf(stress.paths()).points;
    const QPointF middle = (points.front() + points[points.size() > 1 ? 1 : 0]) / 2;
    cursor =
        QPoint(qRound(middle.x() * stress.canvas().width()), qRound(middle.y() * stress.canvas().height()));
    send(QEvent::MouseMove, Qt::NoButton);
}

void CanvasUser::goToPoint() {
    if (stress.paths().empty())
        return;
    const TrackPath& path = random.oneOf(stress.paths());
    const QPointF point = random.oneOf(path.points);
    cursor =
        QPoint(qRound(point.x() * stress.canvas().width()), qRound(point.y() * stress.canvas().height()));
    send(QEvent::MouseMove, Qt::NoButton);
}
