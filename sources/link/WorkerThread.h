#pragma once

#include <QThread>

class BlockingController;
class OstraSdkClient;

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

    /// Lets the job at hand come to its end, which its time-outs bound, and ends the thread: from then on
    /// nobody but the caller uses the client. Jobs that wait are dropped.
    void finish();

  private:
    QThread thread;
    BlockingController* worker; ///< disposed of by the thread's end
};
