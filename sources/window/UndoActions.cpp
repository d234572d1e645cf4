#include "window/UndoActions.h"

#include "canvas/qmaskwidget.h"
#include "window/KeyAction.h"
#include "window/mainwindow.h"

#include <QAbstractSpinBox>
#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>

#include <utility>

namespace {

/// The field that has the focus, the one inside a spin box too; null when there is none.
QLineEdit* FocusedField() {
    QWidget* const focused = QApplication::focusWidget();
    if (auto* const box = qobject_cast<QAbstractSpinBox*>(focused))
        return box->findChild<QLineEdit*>();
    return qobject_cast<QLineEdit*>(focused);
}

} // namespace

UndoActions::UndoActions(QWidget& window, QMaskWidget& canvas, std::function<bool()> isBusy)
    : canvas(canvas),
      isBusy(std::move(isBusy)),
      undoAction(AddToWindow(
          window, {"action_undo", MainWindow::tr("Undo"), {QStringLiteral("Ctrl+Z")}, [this] { undo(); }})),
      redoAction(AddToWindow(window, {"action_redo",
                                      MainWindow::tr("Redo"),
                                      {QStringLiteral("Ctrl+Shift+Z"), QStringLiteral("Ctrl+Y")},
                                      [this] { redo(); }})) {
    for (QWidget* const child : window.findChildren<QWidget*>())
        if (qobject_cast<QLineEdit*>(child) != nullptr || qobject_cast<QAbstractSpinBox*>(child) != nullptr)
            child->installEventFilter(this);
}

/// A field claims these keys even when it has nothing to undo. They belong to the actions, which try the
/// field first.
bool UndoActions::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::ShortcutOverride)
        return QObject::eventFilter(watched, event);
    const auto& key = static_cast<const QKeyEvent&>(*event);
    const QKeySequence pressed(key.key() | static_cast<int>(key.modifiers()));
    if (!undoAction.shortcuts().contains(pressed) && !redoAction.shortcuts().contains(pressed))
        return QObject::eventFilter(watched, event);
    event->ignore();
    return true;
}

void UndoActions::undo() {
    if (!mayAct())
        return;
    QLineEdit* const field = FocusedField();
    if (field != nullptr && field->isUndoAvailable())
        field->undo();
    else
        canvas.document().undo();
}

void UndoActions::redo() {
    if (!mayAct())
        return;
    QLineEdit* const field = FocusedField();
    if (field != nullptr && field->isRedoAvailable())
        field->redo();
    else
        canvas.document().redo();
}

bool UndoActions::mayAct() const {
    return !canvas.isGestureActive() && !isBusy();
}
