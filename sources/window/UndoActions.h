#pragma once

#include <QObject>

#include <functional>

class QAction;
class QLineEdit;
class QMaskWidget;

/// Undo and redo by their keys. A field that has the focus takes back its own typing first; then it is the
/// document's turn. While something is being drawn or dragged nothing happens.
class UndoActions final : public QObject {
  public:
    /// Adds the actions to the window, whose fields are all there already.
    /// @param isBusy says whether nothing may be changed at the moment
    /// All are borrowed and outlive the object.
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
