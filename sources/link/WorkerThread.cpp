#include "link/WorkerThread.h"

#include "link/BlockingController.h"

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
