#include "window/InputGuard.h"

#include <QComboBox>
#include <QKeyEvent>

namespace {

/// Whether this key would choose another entry of a closed list.
bool Chooses(const QKeyEvent& key) {
    switch (key.key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Home:
    case Qt::Key_End:
        return true;
    default:
        return !key.text().isEmpty() && key.text().at(0).isPrint();
    }
}

} // namespace

void InputGuard::ignoreWheel(QWidget& control) {
    control.installEventFilter(this);
}

void InputGuard::openByKeys(QComboBox& list) {
    openedByKeys = &list;
    list.installEventFilter(this);
}

bool InputGuard::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Wheel) {
        event->ignore();
        return true;
    }
    if (watched == openedByKeys && event->type() == QEvent::KeyPress &&
        Chooses(static_cast<const QKeyEvent&>(*event))) {
        openedByKeys->showPopup();
        return true;
    }
    return QObject::eventFilter(watched, event);
}
