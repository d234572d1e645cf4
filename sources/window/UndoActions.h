#pragma once

#include <QObject>

#include <functional>

class QAction;
class QLineEdit;
class QMaskWidget;

/// Undo and redo by their keys. A field that has the focus undoes its own typing first, then the document's
/// steps. Does nothing while something is being drawn or dragged.
class UndoActions final : public QObject {
  public:
    /// Adds the actions to the window, whose fields must all exist.
    /// @param isBusy returns whether editing is blocked at present All are borrowed and outlive the object.
    UndoActions(QWidget& window, QMaskWidget& canvas, std::function<bool()> isBusy);

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void undo();
    void redo();
    [[nodiscard]] bool mayAct() const;

    QMaskWidget& canvas;
    std::function<bool()> isBusy;
    QAction& undoAction; ///< both are children of the window
    QAction& redoAction;
};
