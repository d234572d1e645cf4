#include "window/KeyAction.h"

#include <QAction>
#include <QWidget>

namespace {

QAction& Add(QWidget& widget, const KeyAction& action, Qt::ShortcutContext context) {
    auto* const made = new QAction(action.text, &widget);
    made->setObjectName(QString::fromLatin1(action.name));
    QList<QKeySequence> shortcuts;
    for (const QString& key : action.keys)
        shortcuts.append(QKeySequence(key));
    made->setShortcuts(shortcuts);
    made->setShortcutContext(context);
    QObject::connect(made, &QAction::triggered, &widget, action.act);
    widget.addAction(made);
    return *made;
}

} // namespace

QAction& AddToWindow(QWidget& window, const KeyAction& action) {
    return Add(window, action, Qt::WindowShortcut);
}

QAction& AddToFocused(QWidget& widget, const KeyAction& action) {
    return Add(widget, action, Qt::WidgetShortcut);
}
