#pragma once

#include "basalt/Exception.h"

#include <QMetaType>
#include <QObject>
#include <QString>

class OstraSdkClient;

Q_DECLARE_METATYPE(Ve::Exception)

/// The two operations that may take minutes, for a thread of their own: a signal asks for one of them, and
/// exactly one finished-signal tells how it ended. Status 1 is success; any other value is what stopped it.
class BlockingController final : public QObject {
    Q_OBJECT

  public:
    /// @param client outlives the controller; nobody else uses it while an operation runs
    BlockingController(OstraSdkClient* client, QObject* parent);

  signals:
    void SignalRestoreFinished(Ve::Exception result);
    void SignalBackupFinished(Ve::Exception result);

  public slots:
    /// Has the server restore the backup file, then sets its replay mode back when that changed it.
    void SlotRestore(const QString& backupFileName);
    /// Writes the server's archive to the file.
    void SlotBackup(const QString& fileName);

  private:
    void RestoreAndKeepReplayMode(const std::string& backupFileName);

    OstraSdkClient* client;
};
