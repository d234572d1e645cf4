#include "link/BlockingController.h"

#include "basalt/bStatus.h"
#include "link/OstraSdkClient.h"

#include <exception>

namespace {

Ve::Exception Unforeseen(const char* reason) {
    return {__LINE__, __FILE__, bERROR_REQUEST, "BlockingController", "The operation was given up - %s.",
            reason};
}

/// Runs the work and returns how it ended. Whatever it throws becomes a result: the window waits for one, and
/// stays disabled until it comes.
template<typename Work>
Ve::Exception Outcome(Work work) {
    try {
        work();
        return Ve::Exception(bOK);
    } catch (const Ve::Exception& failure) {
        return failure;
    } catch (const std::exception& failure) {
        return Unforeseen(failure.what());
    } catch (...) {
        return Unforeseen("unknown error");
    }
}

} // namespace

BlockingController::BlockingController(OstraSdkClient* client, QObject* parent)
    : QObject(parent), client(client) {
    qRegisterMetaType<Ve::Exception>("Ve::Exception");
}

void BlockingController::SlotRestore(const QString& backupFileName) {
    emit SignalRestoreFinished(Outcome([&] { RestoreAndKeepReplayMode(backupFileName.toStdString()); }));
}

void BlockingController::SlotBackup(const QString& fileName) {
    emit SignalBackupFinished(Outcome([&] { client->Backup(fileName.toStdString()); }));
}

void BlockingController::RestoreAndKeepReplayMode(const std::string& backupFileName) {
    const bool before = client->GetReplayMode();
    client->Restore(backupFileName);
    const bool after = client->GetReplayMode();
    if (after != before)
        client->SetReplayMode(before);
}

WorkerThread::WorkerThread(OstraSdkClient& client) : worker(new BlockingController(&client, nullptr)) {
    worker->moveToThread(&thread);
    QObject::connect(&thread, &QThread::finished, worker, &QObject::deleteLater);
}

WorkerThread::~WorkerThread() {
    finish();
}

void WorkerThread::finish() {
    thread.quit();
    thread.wait();
}
