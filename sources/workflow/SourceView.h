#pragma once

#include "link/OstraSdkClient.h"

#include <QString>

#include <vector>

/// What choosing and using a source of tracks needs from the window.
class SourceView {
  public:
    /// What the button beside the list of sources does.
    enum class ConnectionAction { Connect, Disconnect, LoadBackup };

    /// Whether "Backup File" is chosen in the list of sources.
    [[nodiscard]] virtual bool isBackupFileChosen() const = 0;
    /// The chosen entry of the list, and its place in it.
    [[nodiscard]] virtual QString chosenSource() const = 0;
    [[nodiscard]] virtual int chosenSourceIndex() const = 0;

    /// Lets the operator choose a backup file; empty when that was cancelled.
    virtual QString askForBackup() = 0;

    virtual void clearSources() = 0;
    /// Lists these servers, and "Backup File" after them.
    virtual void showSources(const std::vector<OstraServerInfo>& servers) = 0;
    /// What the upload button does: its tool tip.
    virtual void showUploadTarget(bool backupFile) = 0;
    virtual void showConnectionAction(ConnectionAction action) = 0;
    virtual void enableConnection(bool enabled) = 0;
    virtual void enableSources(bool enabled) = 0;
    virtual void enableOperations(bool enabled) = 0;
    /// What is open, for the window's title; both empty for nothing.
    virtual void showOpenSource(const QString& kind, const QString& name) = 0;
    /// The message is painted immediately: the work that follows keeps the window from painting.
    virtual void showStatus(const QString& message) = 0;

    /// Has the worker download the server's backup into a file, or restore the server from it.
    virtual void requestBackup(const QString& file) = 0;
    virtual void requestRestore(const QString& file) = 0;

  protected:
    ~SourceView() = default;
};
