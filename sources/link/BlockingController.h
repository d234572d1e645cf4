#pragma once

#include "basalt/Exception.h"

#include <QMetaType>
#include <QObject>
#include <QString>
#include <QThread>

class OstraSdkClient;

Q_DECLARE_METATYPE(Ve::Exception)

/// The two operations that may take minutes, for a worker thread: a signal requests one of them, and exactly
/// one finished-signal reports how it ended. Status 1 is success; any other value is the failure.
class BlockingController final : public QObject {
    Q_OBJECT

  public:
    /// @param client outlives the controller; nobody else uses it while an operation runs
    BlockingController(OstraSdkClient* client, QObject* parent);

  signals:
    void SignalRestoreFinished(Ve::Exception result);
    void SignalBackupFinished(Ve::Exception result);

  public slots:
    /// Has the server restore the backup file, then resets its replay mode if the restore changed it.
    void SlotRestore(const QString& backupFileName);
    /// Writes the server's archive to the file.
    void SlotBackup(const QString& fileName);

  private:
    void RestoreAndKeepReplayMode(const std::string& backupFileName);

    OstraSdkClient* client;
};

/// The background thread with the controller that lives in it.
class WorkerThread final {
  public:
    /// The client is borrowed and must outlive this object.
    explicit WorkerThread(OstraSdkClient& client);
    WorkerThread(const WorkerThread&) = delete;
    WorkerThread& operator=(const WorkerThread&) = delete;
    ~WorkerThread();

    /// To be connected to before `start`; lives as long as the thread runs.
    [[nodiscard]] BlockingController& controller() const { return *worker; }

    void start() { thread.start(QThread::TimeCriticalPriority); }

    /// Waits for the running job, which its time-outs bound, and ends the thread: from then on only the
    /// caller uses the client. Waiting jobs are dropped.
    void finish();

  private:
    QThread thread;
    BlockingController* worker; ///< deleted when the thread ends
};
