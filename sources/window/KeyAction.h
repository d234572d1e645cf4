#pragma once

#include <QString>
#include <QStringList>

#include <functional>

class QAction;
class QWidget;

/// What a key does, as an action that test programs and desktops find by its name.
struct KeyAction {
    const char* name; ///< the object's name
    QString text;
    QStringList keys;          ///< as QKeySequence reads them
    std::function<void()> act; ///< called at every press, and repeatedly while the key is held
};

/// Adds an action for a whole window, or for a widget while it has the focus; the widget owns it.
QAction& AddToWindow(QWidget& window, const KeyAction& action);
QAction& AddToFocused(QWidget& widget, const KeyAction& action);
