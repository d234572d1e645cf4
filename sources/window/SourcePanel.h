#pragma once

#include "workflow/SourceView.h"

#include <QObject>

class QMainWindow;

namespace Ui {
class MainWindow;
}

/// The controls for the source of tracks: the list of sources, the connection, upload and reset buttons, the
/// window's title and its status bar.
class SourcePanel final : public QObject, public SourceView {
    Q_OBJECT

  public:
    /// Both are borrowed and outlive the panel.
    SourcePanel(Ui::MainWindow& ui, QMainWindow& window);

    /// Whether an entry of the list of sources is "Backup File".
    [[nodiscard]] static bool isBackupFile(const QString& source);

    [[nodiscard]] bool isBackupFileChosen() const override;
    [[nodiscard]] QString chosenSource() const override;
    [[nodiscard]] int chosenSourceIndex() const override;
    QString askForBackup() override;
    void clearSources() override;
    void showSources(const std::vector<OstraServerInfo>& servers) override;
    void showUploadTarget(bool backupFile) override;
    void showConnectionAction(ConnectionAction action) override;
    void enableConnection(bool enabled) override;
    void enableSources(bool enabled) override;
    void enableOperations(bool enabled) override;
    void showOpenSource(const QString& kind, const QString& name) override;
    void showStatus(const QString& message) override;
    void requestBackup(const QString& file) override { emit backupRequested(file); }
    void requestRestore(const QString& file) override { emit restoreRequested(file); }

  signals:
    void backupRequested(const QString& file);
    void restoreRequested(const QString& file);

  private:
    Ui::MainWindow& ui;
    QMainWindow& window;
};
