#pragma once

#include "cinder/TarName.h"

#include <QLabel>

/// Shows in the status bar what would be lost without further action: an edit that is in no file, or a saved
/// track that was not sent; and what is missing from the working folders.
class StateLabel final : public QLabel {
    Q_OBJECT

  public:
    /// @param keptFolder where copies of what is discarded are kept, for the tool tip
    StateLabel(const QString& keptFolder, QWidget* parent);

    /// @param modified the open track has edits that were not saved
    /// @param unsent the workspace holds a saved track that was not sent
    /// @param links what the open backup holds besides files and folders; the tool tip names them
    void showState(bool modified, bool unsent, const LeftOut& links);

    /// Shows why the window does not close, until the next state is shown.
    void showCloseRefused();

  private:
    QString toolTipText;
};
